#include "service/WebModel.h"

#include "identity/AppInfo.h"
#include "identity/GroupPreferences.h"
#include "json/JSONCoding.h"
#include "service/Envelope.h"
#include "service/ServiceOrigin.h"

#include <QRandomGenerator>
#include <QTimer>
#include <QUuid>

#include <chrono>
#include <utility>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

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

std::optional<GuideModel> decodeGuide(const QByteArray& text)
{
    auto response = decodeReply<GuideResponse>(text);
    return response ? std::optional<GuideModel>(std::move(*response)) : std::nullopt;
}

std::optional<QVariantMap> dictionary(const QVariant& value)
{
    if (value.typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    return value.toMap();
}

std::optional<UpgradeInfo> decodeOffer(const QByteArray& text)
{
    const auto any = decodeReply<JSONAny>(text);
    const auto reply = any ? dictionary(any->value()) : std::nullopt;
    return reply ? UpgradeInfo::fromDictionary(dictionary(reply->value(u"data"_s))) : std::nullopt;
}

} // namespace

WebModel& WebModel::shared()
{
    static WebModel model(
        {AppInfo::shared().version(), groupPreferences(), standardDefaultsInteger(u"ct"_s)},
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
    m_serviceEndpoint.setPath(u"/litecount.html"_s);
    QTimer::singleShot(2s, Qt::PreciseTimer, this, &WebModel::refreshGudieInfo);
    connect(&m_midnightTimer, &WallClockTimer::fired, this, &WebModel::midnightRefresh);
    connect(&m_midnightTimer, &WallClockTimer::clockDidChange, this, &WebModel::waitForMidnight);
    waitForMidnight();
}

const QString& WebModel::uuid()
{
    if (m_uuid)
        return *m_uuid;
    const auto key = u"uuid"_s;
    m_group.synchronize(); // the companion may just have stored one
    m_uuid = m_group.string(key);
    if (!m_uuid) {
        m_uuid = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
        m_group.setString(key, m_uuid, PreferencesSuite::Overwrite::Never);
        m_group.synchronize();
        m_uuid = m_group.string(key).value_or(*m_uuid); // or another process's
    }
    return *m_uuid;
}

template <typename Content, typename Completion>
void WebModel::send(Function function,
    const QByteArray& body,
    std::optional<Content> (*decode)(const QByteArray& text),
    Completion completion)
{
    const auto sealed = Envelope::sealBody(body);
    if (!sealed)
        return;
    sessionManager().post(
        m_serviceEndpoint,
        {{u"f"_s, QString::number(static_cast<int>(function))},
            {u"i"_s, QString::fromLatin1(*sealed)}},
        [decode](const SessionManager::Reply& reply) {
            const auto text = reply ? Envelope::openBody(*reply) : std::nullopt;
            return text ? Answer<Content>{true, decode(*text)} : Answer<Content>{};
        },
        std::move(completion));
}

void WebModel::refreshGudieInfo()
{
    requestGuide();
}

void WebModel::requestGuide()
{
    send(Function::Guide, identification(), decodeGuide, [this](Answer<GuideModel> answer) {
        m_guideModel = std::move(answer.content);
        m_notifications.post(u"NewFeatureUpdated"_s);
        m_notifications.post(u"leafletUpdated"_s,
            m_guideModel ? QVariant::fromValue(m_guideModel->leftPanel()) : QVariant());
    });
}

void WebModel::waitForMidnight()
{
    if (const auto date = m_schedule.next(QDateTime::currentDateTime()))
        m_midnightTimer.setFireDate(*date);
}

void WebModel::midnightRefresh()
{
    sendHeartbeat(HeartBeatType::MidNight, u"1000"_s, nullptr);
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
    send(Function::Heartbeat,
        body,
        decodeReply<HeartbeatResponse>,
        [this, completion = std::move(completion)](const Answer<HeartbeatResponse>& answer) {
            if (answer.hasArrived)
                m_heartbeatResponse = answer.content;
            if (completion)
                completion(answer.content);
            if (answer.hasArrived)
                m_notifications.post(u"HeartbeatUpdated"_s);
        });
}

void WebModel::checkUpgrade(UpgradeCompletion completion)
{
    send(Function::Upgrade,
        identification(),
        decodeOffer,
        [completion = std::move(completion)](const Answer<UpgradeInfo>& answer) {
            if (completion)
                completion(answer.content);
        });
}

QByteArray WebModel::identification()
{
    return R"({"ui":")" + uuid().toUtf8() + R"(","v":")" + m_version.toUtf8() + R"("})";
}

SessionManager& WebModel::sessionManager()
{
    if (!m_sessionManager)
        m_sessionManager.emplace(u"MACTavelorLite"_s + m_version);
    return *m_sessionManager;
}
