#include "platform/DesktopWindow.h"
#include "platform/DistributedNotificationCenter.h"
#include "platform/HelperStatus.h"
#include "platform/Player.h"
#include "platform/Recording.h"
#include "platform/Workspace.h"

#include "base/NotificationCenter.h"

using namespace Qt::StringLiterals;

namespace {

int windowCount = 0;
Player::Body* playerBody = nullptr;

QString text(const QRect& frame)
{
    return u"%1,%2 %3x%4"_s.arg(frame.x()).arg(frame.y()).arg(frame.width()).arg(frame.height());
}

void record(const QString& line)
{
    Recording::lines().append(line);
}

} // namespace

std::vector<Screen> Screen::screens()
{
    return Recording::screens();
}

// -- windows and views

class DesktopWindow::Body {
public:
    void record(const QString& line) const { ::record(u"window %1 "_s.arg(number) + line); }

    int number = ++windowCount;
    std::vector<std::unique_ptr<PlayerLayerView>> views;
};

DesktopWindow::DesktopWindow(
    const QRect& contentRect, WindowStyle style, WindowBacking backing, Defer, const Screen& screen)
    : m_body(std::make_unique<Body>())
{
    m_body->record(u"made %1 style %2 backing %3 on %4"_s.arg(text(contentRect))
                       .arg(static_cast<unsigned>(style))
                       .arg(static_cast<unsigned>(backing))
                       .arg(screen.name));
}

DesktopWindow::~DesktopWindow() = default;

void DesktopWindow::setCollectionBehavior(WindowCollectionBehavior behavior)
{
    m_body->record(u"behavior %1"_s.arg(static_cast<unsigned>(behavior)));
}

void DesktopWindow::setLevel(WindowLevel level)
{
    m_body->record(u"level %1"_s.arg(static_cast<int>(level)));
}

void DesktopWindow::orderBack()
{
    m_body->record(u"back"_s);
}

void DesktopWindow::orderFront()
{
    m_body->record(u"front"_s);
}

void DesktopWindow::orderOut()
{
    m_body->record(u"out"_s);
}

void DesktopWindow::setClickAction(std::function<void()> /*action*/)
{
    m_body->record(u"click action"_s);
}

void DesktopWindow::addSubview(std::unique_ptr<PlayerLayerView> view)
{
    m_body->record(u"view "_s + text(view->frame()));
    m_body->views.push_back(std::move(view));
}

class PlayerLayerView::Body {};

PlayerLayerView::PlayerLayerView(const QRect& frame) : m_frame(frame) {}

PlayerLayerView::~PlayerLayerView() = default;

void PlayerLayerView::setPlayer(Player&) {}
void PlayerLayerView::setVideoGravity(VideoGravity) {}
void PlayerLayerView::setControlsStyle(PlayerControlsStyle) {}
void PlayerLayerView::drawRect(const QRect&) {}
void PlayerLayerView::touchesBegan(const TouchEvent&) {}
void PlayerLayerView::mouseDown(const MouseEvent&) {}

// -- the player

class Player::Body {
public:
    static void setStatus(PlayerItem& item, PlayerItem::Status status) { item.setStatus(status); }

    std::unique_ptr<PlayerItem> item;
    float volume = 1;
    bool isMuted = false;
};

Player::Player(std::unique_ptr<PlayerItem> item) : m_body(std::make_unique<Body>())
{
    record(u"player made"_s);
    playerBody = m_body.get();
    replaceCurrentItem(std::move(item));
}

Player::~Player()
{
    playerBody = nullptr;
}

void Player::play()
{
    record(u"player play"_s);
}

void Player::pause()
{
    record(u"player pause"_s);
}

void Player::setVolume(float volume)
{
    m_body->volume = volume;
    record(u"player volume %1"_s.arg(static_cast<double>(volume)));
}

void Player::setMuted(bool muted)
{
    m_body->isMuted = muted;
    record(u"player muted %1"_s.arg(muted));
}

float Player::volume() const
{
    return m_body->volume;
}

bool Player::isMuted() const
{
    return m_body->isMuted;
}

void Player::setActionAtItemEnd(ActionAtItemEnd action)
{
    record(u"player action at end %1"_s.arg(static_cast<int>(action)));
}

void Player::replaceCurrentItem(std::unique_ptr<PlayerItem> item)
{
    if (m_body->item)
        m_body->item.release()->deleteLater();
    m_body->item = std::move(item);
    record(u"item "_s + (m_body->item ? m_body->item->url().fileName() : u"none"_s));
    if (auto* const current = currentItem()) {
        QObject::connect(
            current, &PlayerItem::seekToZeroRequested, current, [] { record(u"item seek 0"_s); });
        Q_EMIT current->openingBegan();
    }
}

PlayerItem* Player::currentItem() const
{
    return m_body->item.get();
}

PlayerItem* Recording::currentItem()
{
    return playerBody ? playerBody->item.get() : nullptr;
}

void Recording::setCurrentItemStatus(PlayerItem::Status status)
{
    Player::Body::setStatus(*currentItem(), status);
}

void Recording::reset()
{
    s_lines.clear();
    s_screens.clear();
    windowCount = 0;
}

// -- notifications and the workspace

class DistributedNotificationCenter::Body {
public:
    NotificationCenter observers; // whatever is posted comes back, as from a bus
};

DistributedNotificationCenter::DistributedNotificationCenter() : m_body(std::make_unique<Body>()) {}
DistributedNotificationCenter::~DistributedNotificationCenter() = default;

DistributedNotificationCenter& DistributedNotificationCenter::defaultCenter()
{
    static DistributedNotificationCenter center;
    return center;
}

Disposable DistributedNotificationCenter::addObserver(
    const QString& name, std::function<void()> observer)
{
    return m_body->observers.addObserver(name, std::move(observer));
}

void DistributedNotificationCenter::setSuspended(bool isSuspended)
{
    record(u"notifications suspended %1"_s.arg(isSuspended));
}

void DistributedNotificationCenter::post(const QString& name)
{
    m_body->observers.post(name);
}

class Workspace::Body {};

Workspace::Workspace() = default;
Workspace::~Workspace() = default;

Workspace& Workspace::shared()
{
    static Workspace workspace;
    return workspace;
}

void Workspace::launchApplication(const QString& identifier)
{
    record(u"launch "_s + identifier);
}

void Workspace::openUrl(const QUrl&) {}

void HelperStatus::setIntent(const Intent&) {}
