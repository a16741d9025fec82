#include "platform/linux/StatusBarBody.h"

#include "platform/linux/x11/X11Connection.h"

#include <QDBusMessage>

#include <chrono>

using namespace std::chrono_literals;

namespace {

const auto watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
constexpr auto patienceWithHosts = 5s;
constexpr auto patienceWithTrays = 1s;

} // namespace

StatusBar::Body::Body(StatusBar& statusBar)
    : m_statusBar(statusBar),
      m_bus(QDBusConnection::sessionBus()),
      m_watcher(watcherName, m_bus, QDBusServiceWatcher::WatchForRegistration)
{
    connect(&m_watcher, &QDBusServiceWatcher::serviceRegistered, this, &Body::lookForHost);
    m_bus.connect(QString(),
        QStringLiteral("/StatusNotifierWatcher"),
        watcherName,
        QStringLiteral("StatusNotifierHostRegistered"),
        this,
        SLOT(lookForHost()));
    m_patience.setSingleShot(true);
    connect(&m_patience, &QTimer::timeout, this, &Body::lookForX11Tray);
    m_patience.start(patienceWithHosts);
    // A tray that comes later has a window; it owns its selection soon before or after.
    if (auto* const x11 = X11Connection::shared()) {
        connect(x11, &X11Connection::rootChildrenChanged, this, [this] {
            if (!isAvailable && !m_patience.isActive())
                m_patience.start(patienceWithTrays);
        });
    }
    lookForHost();
}

void StatusBar::Body::lookForHost()
{
    if (isAvailable)
        return;
    auto question = QDBusMessage::createMethodCall(watcherName,
        QStringLiteral("/StatusNotifierWatcher"),
        QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    question << watcherName << QStringLiteral("IsStatusNotifierHostRegistered");
    question.setAutoStartService(false);
    qRegisterMetaType<QDBusVariant>(); // Qt looks the slot's types up by their names
    m_bus.callWithCallback(question, this, SLOT(receiveHost(QDBusVariant)));
}

void StatusBar::Body::receiveHost(const QDBusVariant& isRegistered)
{
    if (isRegistered.variant().toBool())
        becomeAvailable();
}

void StatusBar::Body::lookForX11Tray()
{
    auto* const x11 = X11Connection::shared();
    if (!x11)
        return;
    const auto cookie = xcb_get_selection_owner(x11->get(), x11->atom("_NET_SYSTEM_TRAY_S0"));
    const auto reply = own(xcb_get_selection_owner_reply(x11->get(), cookie, nullptr));
    if (reply && reply->owner != XCB_NONE)
        becomeAvailable();
}

void StatusBar::Body::becomeAvailable()
{
    if (isAvailable)
        return;
    isAvailable = true;
    m_patience.stop();
    Q_EMIT m_statusBar.becameAvailable();
}

StatusBar& StatusBar::shared()
{
    static StatusBar statusBar;
    return statusBar;
}

StatusBar::StatusBar() : m_body(std::make_unique<Body>(*this)) {}

StatusBar::~StatusBar() = default;

bool StatusBar::isAvailable() const
{
    return m_body->isAvailable;
}
