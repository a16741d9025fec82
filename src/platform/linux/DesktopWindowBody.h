#pragma once

#include "platform/DesktopWindow.h"
#include "platform/linux/PlayerLayerViewBody.h"

#include <functional>
#include <memory>
#include <vector>

/// What a window of any display server has: its views, and how a press becomes a click. The
/// display server's part is a subclass, chosen at run time.
class DesktopWindow::Body {
public:
    explicit Body(const QSize& size) : m_size(size) {}
    virtual ~Body() = default;
    Body(const Body&) = delete;
    Body& operator=(const Body&) = delete;

    virtual void setCollectionBehavior(WindowCollectionBehavior behavior) = 0;
    virtual void setLevel(WindowLevel level) = 0;
    enum class Order { Back, Front };
    virtual void show(Order order) = 0;
    virtual void hide() = 0;
    /// The display's name of the window, as the render thread uses it.
    virtual std::uint32_t identifier() const = 0;

    void setClickAction(std::function<void()> action) { m_clickAction = std::move(action); }
    void addSubview(std::unique_ptr<PlayerLayerView> view);

protected:
    void expose(const QRect& dirtyRect);
    void press(const QPoint& location);
    void release(const QPoint& location);
    void touch(const QPoint& location);

private:
    PlayerLayerView* viewAt(const QPoint& location) const;

    QSize m_size;
    std::vector<std::unique_ptr<PlayerLayerView>> m_views;
    std::function<void()> m_clickAction;
    bool m_isClickBegun = false;
};
