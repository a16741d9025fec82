#include "platform/linux/application/StatusBarBody.h"

#include "platform/linux/display/DisplayServer.h"

#include <QDBusMessage>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const auto watcherName = u"org.kde.StatusNotifierWatcher"_s;
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
        u"/StatusNotifierWatcher"_s,
        watcherName,
        u"StatusNotifierHostRegistered"_s,
        this,
        SLOT(lookForHost()));
    m_patience.setSingleShot(true);
    connect(&m_patience, &QTimer::timeout, this, &Body::lookForTrayOfDisplay);
    m_patience.start(patienceWithHosts);
    connect(&DisplayServer::shared(), &DisplayServer::trayMayHaveCome, this, [this] {
        if (!isAvailable && !m_patience.isActive())
            m_patience.start(patienceWithTrays);
    });
    lookForHost();
}

void StatusBar::Body::lookForHost()
{
    if (isAvailable)
        return;
    auto question = QDBusMessage::createMethodCall(
        watcherName, u"/StatusNotifierWatcher"_s, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    question << watcherName << u"IsStatusNotifierHostRegistered"_s;
    question.setAutoStartService(false);
    qRegisterMetaType<QDBusVariant>(); // Qt looks the slot's types up by their names
    m_bus.callWithCallback(question, this, SLOT(receiveHost(QDBusVariant)));
}

void StatusBar::Body::receiveHost(const QDBusVariant& isRegistered)
{
    if (isRegistered.variant().toBool())
        becomeAvailable();
}

void StatusBar::Body::lookForTrayOfDisplay()
{
    if (DisplayServer::shared().hasTray())
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
