#include "platform/HelperStatus.h"

#include "platform/linux/dbus/HelperStatusObject.h"
#include "platform/linux/dbus/SessionNames.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>

#include <chrono>

using namespace Qt::StringLiterals;

void HelperStatus::setProblem(const QString& problem)
{
    static HelperStatusObject object;
    object.setProblem(problem);
    // Again and again, because the bus may be another one by now; a second time is refused.
    QDBusConnection::sessionBus().registerObject(
        SessionNames::helperPath, &object, QDBusConnection::ExportAllProperties);
}

std::optional<QString> HelperStatus::problem()
{
    auto question = QDBusMessage::createMethodCall(SessionNames::helper,
        SessionNames::helperPath,
        u"org.freedesktop.DBus.Properties"_s,
        u"Get"_s);
    question << SessionNames::helperInterface << u"problem"_s;
    constexpr std::chrono::milliseconds patience{1000};
    const QDBusReply<QDBusVariant> answer = QDBusConnection::sessionBus().call(
        question, QDBus::Block, static_cast<int>(patience.count()));
    if (!answer.isValid())
        return std::nullopt;
    return answer.value().variant().toString();
}
