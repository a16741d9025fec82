#include "platform/PlayerLayerView.h"

#include "platform/linux/video/PlayerBody.h"
#include "platform/linux/video/PlayerLayerViewBody.h"

#include <utility>

PlayerLayerView::PlayerLayerView(const QRect& frame)
    : m_frame(frame), m_body(std::make_unique<Body>())
{
}

PlayerLayerView::~PlayerLayerView() = default;

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
        m_player->body().renderThread().removeTarget(this);
}

void PlayerLayerView::Body::setPlayer(Player& player)
{
    if (m_player)
        m_player->body().renderThread().removeTarget(this);
    m_player = &player;
    m_player->body().renderThread().setTarget(this, m_target);
}

void PlayerLayerView::Body::setTarget(const FrameTarget& target)
{
    m_target = target;
    if (m_player)
        m_player->body().renderThread().setTarget(this, m_target);
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
