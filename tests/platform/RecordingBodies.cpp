#include "platform/DesktopWindow.h"
#include "platform/DistributedNotificationCenter.h"
#include "platform/Player.h"
#include "platform/PlayerLayerView.h"
#include "platform/Recording.h"
#include "platform/Screen.h"
#include "platform/Workspace.h"

#include "base/NotificationCenter.h"

#include <utility>

namespace {

int windowCount = 0;
Player::Body* playerBody = nullptr;
std::function<void()> lastClickAction;

QString text(const QRect& rectangle)
{
    return QStringLiteral("%1,%2 %3x%4")
        .arg(rectangle.x())
        .arg(rectangle.y())
        .arg(rectangle.width())
        .arg(rectangle.height());
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
    void record(const QString& line) const
    {
        ::record(QStringLiteral("window %1 %2").arg(number).arg(line));
    }

    int number = ++windowCount;
    std::vector<std::unique_ptr<PlayerLayerView>> views;
};

DesktopWindow::DesktopWindow(
    const QRect& contentRect, WindowStyle style, WindowBacking backing, Defer, const Screen& screen)
    : m_body(std::make_unique<Body>())
{
    m_body->record(QStringLiteral("made %1 style %2 backing %3 on %4")
                       .arg(text(contentRect))
                       .arg(static_cast<unsigned>(style))
                       .arg(static_cast<unsigned>(backing))
                       .arg(screen.name));
}

DesktopWindow::~DesktopWindow() = default;

void DesktopWindow::setCollectionBehavior(WindowCollectionBehavior behavior)
{
    m_body->record(QStringLiteral("behavior %1").arg(static_cast<unsigned>(behavior)));
}

void DesktopWindow::setLevel(WindowLevel level)
{
    m_body->record(QStringLiteral("level %1").arg(static_cast<int>(level)));
}

void DesktopWindow::orderBack()
{
    m_body->record(QStringLiteral("back"));
}

void DesktopWindow::orderFront()
{
    m_body->record(QStringLiteral("front"));
}

void DesktopWindow::orderOut()
{
    m_body->record(QStringLiteral("out"));
}

void DesktopWindow::setClickAction(std::function<void()> action)
{
    lastClickAction = std::move(action);
    m_body->record(QStringLiteral("click action"));
}

void DesktopWindow::addSubview(std::unique_ptr<PlayerLayerView> view)
{
    m_body->record(QStringLiteral("view %1").arg(text(view->frame())));
    m_body->views.push_back(std::move(view));
}

class PlayerLayerView::Body {
public:
    QRect frame;
};

PlayerLayerView::PlayerLayerView(const QRect& frame) : m_body(std::make_unique<Body>(Body{frame}))
{
}

PlayerLayerView::~PlayerLayerView() = default;

const QRect& PlayerLayerView::frame() const
{
    return m_body->frame;
}

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
    record(QStringLiteral("player made"));
    playerBody = m_body.get();
    replaceCurrentItem(std::move(item));
}

Player::~Player()
{
    playerBody = nullptr;
}

void Player::play()
{
    record(QStringLiteral("player play"));
}

void Player::pause()
{
    record(QStringLiteral("player pause"));
}

void Player::setVolume(float volume)
{
    m_body->volume = volume;
    record(QStringLiteral("player volume %1").arg(static_cast<double>(volume)));
}

float Player::volume() const
{
    return m_body->volume;
}

void Player::setMuted(bool muted)
{
    m_body->isMuted = muted;
    record(QStringLiteral("player muted %1").arg(muted));
}

bool Player::isMuted() const
{
    return m_body->isMuted;
}

void Player::setActionAtItemEnd(ActionAtItemEnd action)
{
    record(QStringLiteral("player action at end %1").arg(static_cast<int>(action)));
}

void Player::replaceCurrentItem(std::unique_ptr<PlayerItem> item)
{
    if (m_body->item)
        m_body->item.release()->deleteLater();
    m_body->item = std::move(item);
    if (!m_body->item) {
        record(QStringLiteral("item none"));
        return;
    }
    record(QStringLiteral("item %1").arg(m_body->item->url().fileName()));
    QObject::connect(m_body->item.get(), &PlayerItem::seekToZeroRequested, m_body->item.get(), [] {
        record(QStringLiteral("item seek 0"));
    });
}

PlayerItem* Player::currentItem() const
{
    return m_body->item.get();
}

PlayerItem* Recording::currentItem()
{
    return playerBody ? playerBody->item.get() : nullptr;
}

void Recording::failCurrentItem()
{
    Player::Body::setStatus(*currentItem(), PlayerItem::Status::Failed);
}

void Recording::click()
{
    lastClickAction();
}

void Recording::reset()
{
    lines().clear();
    screens().clear();
    windowCount = 0;
    lastClickAction = nullptr;
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
    record(QStringLiteral("notifications suspended %1").arg(isSuspended));
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
    record(QStringLiteral("launch %1").arg(identifier));
}

void Workspace::openUrl(const QUrl& url)
{
    record(QStringLiteral("open %1").arg(url.toString()));
}
