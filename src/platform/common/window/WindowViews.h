#pragma once

#include "platform/PlayerLayerView.h"

#include <QSize>

#include <functional>
#include <memory>
#include <vector>

/// The views in a window, and how a press on them becomes a click. The same on every system.
/// Locations are in the window, in desktop units.
class WindowViews {
public:
    explicit WindowViews(const QSize& size) : m_size(size) {}

    void add(std::unique_ptr<PlayerLayerView> view);
    const std::vector<std::unique_ptr<PlayerLayerView>>& all() const { return m_views; }
    void setClickAction(std::function<void()> action) { m_clickAction = std::move(action); }

    void expose(const QRect& dirtyRect);
    void press(const QPoint& location);
    void release(const QPoint& location);
    void touch(const QPoint& location);

    /// A view has passed the press on to the window: with its release it is a click.
    void beginClick() { m_isClickBegun = true; }

private:
    PlayerLayerView* viewAt(const QPoint& location) const;

    QSize m_size;
    std::vector<std::unique_ptr<PlayerLayerView>> m_views;
    std::function<void()> m_clickAction;
    bool m_isClickBegun = false;
};
