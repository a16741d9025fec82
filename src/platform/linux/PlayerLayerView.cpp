#include "platform/PlayerLayerView.h"

#include "platform/Player.h"
#include "platform/linux/PlayerLayerViewBody.h"
#include "platform/linux/video/PlayerBody.h"

#include <utility>

PlayerLayerView::PlayerLayerView(const QRect& frame) : m_body(std::make_unique<Body>(frame)) {}

PlayerLayerView::~PlayerLayerView() = default;

const QRect& PlayerLayerView::frame() const
{
    return m_body->frame();
}

void PlayerLayerView::setPlayer(Player& player)
{
    m_body->setPlayer(player);
}

void PlayerLayerView::setVideoGravity(VideoGravity gravity)
{
    Q_UNUSED(gravity) // one exists; the player's pictures are made for it
}

void PlayerLayerView::setControlsStyle(PlayerControlsStyle style)
{
    Q_UNUSED(style) // there is none but none
}

void PlayerLayerView::drawRect(const QRect& dirtyRect)
{
    Q_UNUSED(dirtyRect) // showing the whole view again is one request, whatever its size
    m_body->redraw();
}

void PlayerLayerView::touchesBegan(const TouchEvent& event)
{
    Q_UNUSED(event)
    m_body->press();
}

void PlayerLayerView::mouseDown(const MouseEvent& event)
{
    Q_UNUSED(event)
    m_body->press();
}

PlayerLayerView::Body::~Body()
{
    if (m_player)
        m_player->body().renderThread().removeSurface(this);
}

void PlayerLayerView::Body::setPlayer(Player& player)
{
    if (m_player)
        m_player->body().renderThread().removeSurface(this);
    m_player = &player;
    connectPicture();
}

void PlayerLayerView::Body::setWindow(const BackingWindow& window, std::function<void()> press)
{
    m_window = window;
    m_press = std::move(press);
    connectPicture();
}

void PlayerLayerView::Body::connectPicture()
{
    if (m_player && m_window.identifier != 0)
        m_player->body().renderThread().setSurface(
            this, {m_window.identifier, m_window.size, m_frame});
}

void PlayerLayerView::Body::redraw()
{
    if (m_player)
        m_player->body().renderThread().presentAgain();
}

void PlayerLayerView::Body::press() const
{
    if (m_press)
        m_press();
}
