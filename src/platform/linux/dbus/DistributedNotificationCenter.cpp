#include "platform/linux/dbus/DistributedNotificationCenterBody.h"

#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const auto path = u"/com/zemra/tavelor"_s;
const auto interfaceName = u"com.zemra.tavelor.DistributedNotification"_s;
const auto member = u"Posted"_s;
constexpr auto signature = u"ssa{sv}"; // name, object, user information

} // namespace

DistributedNotificationCenter::Body::Body() : bus(QDBusConnection::sessionBus())
{
    bus.connect(QString(), path, interfaceName, member, this, SLOT(deliver(QDBusMessage)));
}

/// Any program may send anything: of arguments of other types than a slot's Qt makes none, and
/// libdbus ends the process where one is read as what it is not.
void DistributedNotificationCenter::Body::deliver(const QDBusMessage& message)
{
    if (message.signature() != signature)
        return;
    const auto name = message.arguments().constFirst().toString();
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
    const auto flush = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s,
        u"/org/freedesktop/DBus"_s,
        u"org.freedesktop.DBus"_s,
        u"GetId"_s);
    m_body->bus.call(flush, QDBus::Block, static_cast<int>(patience.count()));
}
