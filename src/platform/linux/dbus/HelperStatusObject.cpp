#include "platform/linux/dbus/HelperStatusObject.h"

#include "platform/linux/dbus/SessionNames.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QVariantMap>

#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Those whose changes are told.
QVariantMap properties(const HelperStatus::Report& report)
{
    return {{u"state"_s, report.state},
        {u"reason"_s, report.reason},
        {u"problem"_s, report.problem},
        {u"sign"_s, report.sign},
        {u"title"_s, report.title},
        {u"monitors"_s, QVariant::fromValue(report.monitors)},
        {u"renderer"_s, report.renderer},
        {u"decoder"_s, report.decoder}};
}

} // namespace

HelperStatusObject& HelperStatusObject::shared()
{
    static HelperStatusObject object;
    return object;
}

HelperStatusObject::HelperStatusObject()
{
    qDBusRegisterMetaType<QMap<QString, QString>>();
    m_update.setSingleShot(true);
    m_update.setInterval(0ms);
    connect(&m_update, &QTimer::timeout, this, &HelperStatusObject::tellChanges);
    QDBusConnection::sessionBus().registerObject(
        SessionNames::helperPath, this, QDBusConnection::ExportAllProperties);
}

void HelperStatusObject::setDisplayFacts(std::function<DisplayFacts()> facts)
{
    m_facts = std::move(facts);
    update();
}

void HelperStatusObject::setIntent(const HelperStatus::Intent& intent)
{
    m_intent = intent;
    update();
}

HelperStatus::Report HelperStatusObject::report() const
{
    const auto facts = m_facts ? m_facts() : DisplayFacts();
    HelperStatus::Report report;
    if (!m_intent.isOpen) {
        report.state = u"closed"_s;
    } else if (!facts.canShow) {
        report.state = u"cannot show here"_s;
        report.reason = facts.problem;
    } else if (!m_intent.nothingToPlay.isEmpty()) {
        report.state = u"nothing to play"_s;
        report.reason = m_intent.nothingToPlay;
    } else if (!m_intent.isPlaying) {
        report.state = u"paused"_s;
    } else {
        report.state = facts.hold.isEmpty() ? u"playing"_s : facts.hold;
    }
    report.problem = facts.problem;
    report.sign = m_intent.sign;
    report.title = m_intent.title;
    report.monitors = facts.monitors;
    report.renderer = facts.renderer;
    report.decoder = facts.decoder;
    report.framesShown = facts.framesShown;
    report.framesDropped = facts.framesDropped;
    report.version = m_intent.version;
    return report;
}

void HelperStatusObject::tellChanges()
{
    const auto now = report();
    const auto told = properties(std::exchange(m_told, now));
    QVariantMap changes;
    const auto values = properties(now);
    for (const auto& [name, value] : values.asKeyValueRange()) {
        if (told.value(name) != value)
            changes.insert(name, value);
    }
    if (changes.isEmpty())
        return;
    auto signal = QDBusMessage::createSignal(
        SessionNames::helperPath, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s);
    signal << SessionNames::helperInterface << changes << QStringList();
    QDBusConnection::sessionBus().send(signal);
}
