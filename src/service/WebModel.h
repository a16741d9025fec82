#pragma once

#include "base/NotificationCenter.h"
#include "platform/PreferencesSuite.h"
#include "platform/WallClockTimer.h"
#include "records/BaseInfoResponse.h"
#include "records/HeartbeatResponse.h"
#include "records/UpgradeInfo.h"
#include "records/VideoListRequest.h"
#include "service/GuideModel.h"
#include "service/HeartBeatType.h"
#include "service/HeartbeatSchedule.h"
#include "service/SessionManager.h"

#include <QObject>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

/// The client of the service: asks for upgrades, fetches the guide once, 2.0 seconds after it was
/// made, and reports daily, soon after midnight. Main thread only.
///
/// Notifications, each also when an answer came that could not be used:
/// - "HeartbeatUpdated", when the answer to a report has deciphered;
/// - "NewFeatureUpdated" and then "leafletUpdated", after the guide's answer or its failure; the
///   latter carries the left panel's `GuideModel::Links` when there is a guide.
class WebModel : public QObject {
    Q_OBJECT

public:
    using HeartbeatCompletion = std::function<void(const std::optional<HeartbeatResponse>&)>;
    using UpgradeCompletion = std::function<void(const std::optional<UpgradeInfo>&)>;

    static WebModel& shared();

    /// What a client is told of the program and the machine that it runs on.
    struct Identity {
        QString version;         ///< goes into every request
        PreferencesSuite& group; ///< keeps the device's identifier; shared with the companion
        qint64 ct;               ///< goes into every report
    };
    /// Borrows all but the values. `draw` is a random number that uses all its bits; it decides how
    /// long after midnight the report is sent.
    WebModel(const Identity& identity,
        QUrl serviceOrigin,
        NotificationCenter& notifications,
        quint32 draw);

    const QUrl& serviceEndpoint() const { return m_serviceEndpoint; }
    /// Identifies this device to the service. The first of the helper and its companion that
    /// needs it makes it up.
    const QString& uuid();
    const std::optional<VideoListRequest>& latestRequest() const { return m_latestRequest; }
    /// The answer to the latest report that deciphered; none when that could not be decoded.
    const std::optional<HeartbeatResponse>& heartbeatResponse() const
    {
        return m_heartbeatResponse;
    }
    qint64 ct() const { return m_ct; }
    const std::optional<BaseInfoResponse>& baseInfo() const { return m_baseInfo; }
    const std::optional<GuideModel>& guideModel() const { return m_guideModel; }

    /// `n` goes into the report as it is. The completion, which may be empty, gets the answer, or
    /// none when there is none that could be used.
    void sendHeartbeat(HeartBeatType type, const QString& n, HeartbeatCompletion completion);
    /// The completion gets what the service offers, none when that is nothing or does not arrive.
    /// Whether it is newer is for the caller to say.
    void checkUpgrade(UpgradeCompletion completion);

public Q_SLOTS:
    /// Fetches the guide.
    void refreshGudieInfo();
    /// Sends the daily report and waits for the next midnight.
    void midnightRefresh();

private:
    enum class Function : int { Heartbeat = 21, Upgrade = 24, Guide = 214 };
    template <typename Content>
    struct Answer {
        bool hasArrived = false; // and was deciphered
        std::optional<Content> content = {};
    };

    /// Sends a UTF-8 text in the envelope. The text of the reply is decoded on another thread; the
    /// completion gets the `Answer<Content>` on the main one.
    template <typename Content, typename Completion>
    void send(Function function,
        const QByteArray& body,
        std::optional<Content> (*decode)(const QByteArray& text),
        Completion completion);
    void requestGuide();
    void waitForMidnight();
    QByteArray identification();
    SessionManager& sessionManager();

    std::optional<VideoListRequest> m_latestRequest;
    std::optional<HeartbeatResponse> m_heartbeatResponse;
    qint64 m_ct;
    std::optional<BaseInfoResponse> m_baseInfo;
    std::optional<SessionManager> m_sessionManager;
    std::optional<GuideModel> m_guideModel;

    QString m_version;
    PreferencesSuite& m_group;
    QUrl m_serviceEndpoint;
    NotificationCenter& m_notifications;
    std::optional<QString> m_uuid;
    HeartbeatSchedule m_schedule;
    WallClockTimer m_midnightTimer;
};
