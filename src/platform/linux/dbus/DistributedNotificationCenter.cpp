#include "platform/linux/dbus/DistributedNotificationCenterBody.h"

#include <QDBusMessage>

#include <chrono>
#include <utility>

namespace {

const auto path = QStringLiteral("/com/zemra/tavelor");
const auto interfaceName = QStringLiteral("com.zemra.tavelor.DistributedNotification");
const auto member = QStringLiteral("Posted");

} // namespace

DistributedNotificationCenter::Body::Body() : bus(QDBusConnection::sessionBus())
{
    bus.connect(
        QString(), path, interfaceName, member, this, SLOT(deliver(QString, QString, QVariantMap)));
}

void DistributedNotificationCenter::Body::deliver(
    const QString& name, const QString& object, const QVariantMap& userInformation)
{
    Q_UNUSED(object)
    Q_UNUSED(userInformation)
    if (!m_isSuspended) {
        observers.post(name);
        return;
    }
    m_waiting.removeOne(name);
    m_waiting.append(name);
}

void DistributedNotificationCenter::Body::setSuspended(bool isSuspended)
{
    m_isSuspended = isSuspended;
    while (!m_isSuspended && !m_waiting.isEmpty()) // an observer may suspend again
        observers.post(m_waiting.takeFirst());
}

DistributedNotificationCenter& DistributedNotificationCenter::defaultCenter()
{
    static DistributedNotificationCenter center;
    return center;
}

DistributedNotificationCenter::DistributedNotificationCenter() : m_body(std::make_unique<Body>()) {}

DistributedNotificationCenter::~DistributedNotificationCenter() = default;

Disposable DistributedNotificationCenter::addObserver(
    const QString& name, std::function<void()> observer)
{
    return m_body->observers.addObserver(name, std::move(observer));
}

void DistributedNotificationCenter::setSuspended(bool isSuspended)
{
    m_body->setSuspended(isSuspended);
}

void DistributedNotificationCenter::post(const QString& name)
{
    auto signal = QDBusMessage::createSignal(path, interfaceName, member);
    signal << name << QString() << QVariantMap();
    if (!m_body->bus.send(signal))
        return;

    // Signals are written by a thread of Qt's, later. The bus answers in order, so its answer to
    // a call tells that the signal has left; a bus that hangs is not waited for.
    constexpr std::chrono::milliseconds patience{1000};
    const auto flush = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("GetId"));
    m_body->bus.call(flush, QDBus::Block, static_cast<int>(patience.count()));
}
