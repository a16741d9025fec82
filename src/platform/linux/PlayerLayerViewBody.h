#pragma once

#include "platform/PlayerLayerView.h"

#include <QSize>

#include <cstdint>
#include <functional>

/// The window that a view is in, as the render thread needs to know it.
struct BackingWindow {
    std::uint32_t identifier = 0; ///< the display's name of the window; 0 for none
    QSize size;                   ///< device pixels
};

class PlayerLayerView::Body {
public:
    explicit Body(const QRect& frame) : m_frame(frame) {}
    ~Body();
    Body(const Body&) = delete;
    Body& operator=(const Body&) = delete;

    const QRect& frame() const { return m_frame; }
    void setPlayer(Player& player);
    /// `press` is called when the view lets its base class have a press.
    void setWindow(const BackingWindow& window, std::function<void()> press);

    void redraw();
    void press() const;

private:
    void connectPicture();

    QRect m_frame;
    Player* m_player = nullptr;
    BackingWindow m_window;
    std::function<void()> m_press;
};
