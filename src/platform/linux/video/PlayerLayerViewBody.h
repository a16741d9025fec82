#pragma once

#include "platform/PlayerLayerView.h"
#include "platform/linux/video/FrameTarget.h"

#include <functional>

class PlayerLayerView::Body {
public:
    Body() = default;
    ~Body();
    Body(const Body&) = delete;
    Body& operator=(const Body&) = delete;

    void setPlayer(Player& player);
    /// Where the picture goes from now on.
    void setTarget(const FrameTarget& target);
    /// `pass` is called when the view lets its base class have a press.
    void setPressHandler(std::function<void()> pass) { m_press = std::move(pass); }

    void redraw();
    void press() const;

private:
    Player* m_player = nullptr;
    FrameTarget m_target;
    std::function<void()> m_press;
};
