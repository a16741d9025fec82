#include "platform/HelperStatus.h"

#include "platform/linux/dbus/HelperStatusObject.h"
#include "platform/linux/dbus/SessionNames.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>

#include <chrono>

using namespace Qt::StringLiterals;

void HelperStatus::setIntent(const Intent& intent)
{
    HelperStatusObject::shared().setIntent(intent);
}

std::optional<HelperStatus::Report> HelperStatus::read()
{
    auto question = QDBusMessage::createMethodCall(SessionNames::helper,
        SessionNames::helperPath,
        u"org.freedesktop.DBus.Properties"_s,
        u"GetAll"_s);
    question << SessionNames::helperInterface;
    constexpr std::chrono::milliseconds patience{1000};
    const QDBusReply<QVariantMap> answer = QDBusConnection::sessionBus().call(
        question, QDBus::Block, static_cast<int>(patience.count()));
    if (!answer.isValid())
        return std::nullopt;
    const auto values = answer.value();
    const auto text = [&values](const QString& name) { return values.value(name).toString(); };
    Report report;
    report.state = text(u"state"_s);
    report.reason = text(u"reason"_s);
    report.problem = text(u"problem"_s);
    report.sign = text(u"sign"_s);
    report.title = text(u"title"_s);
    report.monitors = qdbus_cast<QMap<QString, QString>>(values.value(u"monitors"_s));
    report.renderer = text(u"renderer"_s);
    report.decoder = text(u"decoder"_s);
    report.framesShown = values.value(u"framesShown"_s).toULongLong();
    report.framesDropped = values.value(u"framesDropped"_s).toULongLong();
    report.version = text(u"version"_s);
    return report;
}
