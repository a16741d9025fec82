#include "service/WebModel.h"

#include "identity/AppInfo.h"
#include "identity/GroupPreferences.h"
#include "service/Envelope.h"
#include "service/JSONCoding.h"
#include "service/ServiceOrigin.h"

#include <QRandomGenerator>
#include <QTimer>
#include <QUuid>

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// The process's own defaults, which nobody but a person or an installer writes.
qint64 standardDefaultsInteger(const QString& key)
{
    const auto directories = Directories::userDirectories(SearchPathDirectory::Preferences);
    const auto identifier = Bundle::main().identifier();
    if (directories.isEmpty() || !identifier)
        return 0;
    const auto defaults = PreferencesSuite::open(*identifier, directories.constFirst());
    return defaults ? defaults->integer(key) : 0;
}

std::optional<QVariantMap> dictionary(const QVariant& value)
{
    if (value.typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    return value.toMap();
}

} // namespace

WebModel& WebModel::shared()
{
    static WebModel model({AppInfo::shared().version(),
                              groupPreferences(),
                              standardDefaultsInteger(QStringLiteral("ct"))},
        ::serviceOrigin(qgetenv("TAVELOR_SERVICE_URL")),
        NotificationCenter::defaultCenter(),
        QRandomGenerator::system()->generate());
    return model;
}

WebModel::WebModel(
    const Identity& identity, QUrl serviceOrigin, NotificationCenter& notifications, quint32 draw)
    : m_ct(identity.ct),
      m_version(identity.version),
      m_group(identity.group),
      m_serviceEndpoint(std::move(serviceOrigin)),
      m_notifications(notifications),
      m_schedule(draw)
{
    m_serviceEndpoint.setPath(QStringLiteral("/litecount.html"));
    QTimer::singleShot(2s, Qt::PreciseTimer, this, &WebModel::refreshGudieInfo);
    connect(&m_midnightTimer, &WallClockTimer::fired, this, &WebModel::midnightRefresh);
    connect(&m_midnightTimer, &WallClockTimer::clockDidChange, this, &WebModel::waitForMidnight);
    waitForMidnight();
}

const QString& WebModel::uuid()
{
    if (m_uuid)
        return *m_uuid;
    const auto key = QStringLiteral("uuid");
    m_group.synchronize(); // the companion may just have stored one
    m_uuid = m_group.string(key);
    if (!m_uuid) {
        m_uuid = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
        m_group.setString(key, m_uuid, PreferencesSuite::Overwrite::Never);
        m_group.synchronize();
        m_uuid = m_group.string(key); // or another process's
    }
    return *m_uuid;
}

void WebModel::refreshGudieInfo()
{
    requestGuide();
}

void WebModel::requestGuide()
{
    send(Function::Guide, identification(), [this](const auto& text) { receiveGuide(text); });
}

void WebModel::receiveGuide(const std::optional<QByteArray>& text)
{
    m_guideModel.reset();
    if (text) {
        if (auto response = decodeReply<GuideResponse>(*text))
            m_guideModel.emplace(std::move(*response));
    }
    m_notifications.post(QStringLiteral("NewFeatureUpdated"));
    m_notifications.post(QStringLiteral("leafletUpdated"),
        m_guideModel ? QVariant::fromValue(m_guideModel->leftPanel()) : QVariant());
}

void WebModel::waitForMidnight()
{
    if (const auto date = m_schedule.next(QDateTime::currentDateTime()))
        m_midnightTimer.setFireDate(*date);
}

void WebModel::midnightRefresh()
{
    sendHeartbeat(HeartBeatType::MidNight, QStringLiteral("1000"), nullptr);
    m_schedule.markReported(QDateTime::currentDateTime());
    waitForMidnight();
}

void WebModel::sendHeartbeat(HeartBeatType type, const QString& n, HeartbeatCompletion completion)
{
    // Put together piece by piece, as the service has it: no value is escaped, and the one blank
    // belongs there.
    const auto body = R"({"n":")" + n.toUtf8() + R"(", "ui":")" + uuid().toUtf8() + R"(","ct":")" +
                      QByteArray::number(m_ct) + R"(","v":")" + m_version.toUtf8() +
                      R"(","type":")" + QByteArray::number(static_cast<int>(type)) +
                      R"(","ismac":"1"})";
    send(Function::Heartbeat, body, [this, completion = std::move(completion)](const auto& text) {
        if (!text) {
            if (completion)
                completion(std::nullopt);
            return;
        }
        m_heartbeatResponse = decodeReply<HeartbeatResponse>(*text);
        if (completion)
            completion(m_heartbeatResponse);
        m_notifications.post(QStringLiteral("HeartbeatUpdated"));
    });
}

void WebModel::checkUpgrade(UpgradeCompletion completion)
{
    send(Function::Upgrade,
        identification(),
        [completion = std::move(completion)](const auto& text) {
            if (!completion)
                return;
            std::optional<QVariantMap> reply;
            if (text) {
                if (const auto any = decodeReply<JSONAny>(*text))
                    reply = dictionary(any->value());
            }
            completion(reply ? UpgradeInfo::fromDictionary(
                                   dictionary(reply->value(QStringLiteral("data"))))
                             : std::nullopt);
        });
}

void WebModel::send(Function function, const QByteArray& body, TextCompletion completion)
{
    const auto sealed = Envelope::sealBody(body);
    if (!sealed)
        return;
    sessionManager().post(m_serviceEndpoint,
        {{QStringLiteral("f"), QString::number(static_cast<int>(function))},
            {QStringLiteral("i"), QString::fromLatin1(*sealed)}},
        [completion = std::move(completion)](const std::optional<QByteArray>& reply) {
            completion(reply ? Envelope::openBody(*reply) : std::nullopt);
        });
}

QByteArray WebModel::identification()
{
    return R"({"ui":")" + uuid().toUtf8() + R"(","v":")" + m_version.toUtf8() + R"("})";
}

SessionManager& WebModel::sessionManager()
{
    if (!m_sessionManager)
        m_sessionManager.emplace(QStringLiteral("MACTavelorLite") + m_version);
    return *m_sessionManager;
}
