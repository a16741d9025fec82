#pragma once

#include "service/OpenSsl.h"
#include "service/StandInService.h"
#include "service/WebModel.h"
#include "support/TemporaryHome.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

/// A client and the service that it asks, both new for each test, and what the client announces.
class WebModelFixture : public QObject {
    Q_OBJECT

protected:
    static constexpr int heartbeat = 21;
    static constexpr int upgrade = 24;
    static constexpr int guide = 214;

    static inline const QStringList heartbeatEvents{u"HeartbeatUpdated"_s};
    static inline const QStringList guideEvents{u"NewFeatureUpdated"_s, u"leafletUpdated"_s};

    static void trust(const QString& certificates)
    {
        qputenv("SSL_CERT_FILE", (certificates + u"/certificate.pem"_s).toUtf8());
    }

    /// Starts a service, and a client anew.
    void useService(const QString& certificates)
    {
        trust(certificates);
        m_service = std::make_unique<StandInService>(certificates);
        m_model = makeModel(m_service->origin());
        m_sinceStart.start();
    }

    std::unique_ptr<WebModel> makeModel(const QString& origin)
    {
        return std::make_unique<WebModel>(
            WebModel::Identity{u"1.2.3"_s, *m_suite, 7}, QUrl(origin), *m_notifications, 1U << 31);
    }

    /// All three requests end without an answer, and what was there stays, but for the guide.
    void expectFailures()
    {
        const auto before = m_model->heartbeatResponse();
        m_events.clear();
        int failures = 0;
        const auto count = [&failures](const auto& answer) { failures += answer ? 0 : 1; };
        m_model->sendHeartbeat(HeartBeatType::MidNight, u"1000"_s, count);
        m_model->checkUpgrade(count);
        m_model->refreshGudieInfo();

        QTRY_COMPARE(m_events, guideEvents);
        QTRY_COMPARE(failures, 2);
        QVERIFY(!m_model->guideModel());
        QVERIFY(!m_userInformation.isValid());
        QVERIFY(m_model->heartbeatResponse() == before);
    }

    QTemporaryDir m_certificates;
    std::unique_ptr<TemporaryHome> m_home;
    std::unique_ptr<StandInService> m_service;
    std::unique_ptr<PreferencesSuite> m_suite;
    std::unique_ptr<NotificationCenter> m_notifications;
    std::unique_ptr<WebModel> m_model;
    std::vector<Disposable> m_observers;
    QElapsedTimer m_sinceStart;
    QStringList m_events;
    QVariant m_userInformation;

protected Q_SLOTS:
    void initTestCase() { OpenSsl::makeCertificate(m_certificates.path()); }

    void init()
    {
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        m_home = std::make_unique<TemporaryHome>();
        m_suite = PreferencesSuite::open(u"suite"_s, m_home->path());
        m_notifications = std::make_unique<NotificationCenter>();
        m_events.clear();
        for (const auto& event : heartbeatEvents + guideEvents) {
            const auto keep = [this, event](const QVariant& userInformation) {
                m_events << event;
                m_userInformation = userInformation;
            };
            m_observers.push_back(m_notifications->addObserver(event, keep));
        }
        useService(m_certificates.path());
    }

    void cleanup()
    {
        m_model.reset();
        m_observers.clear();
    }
};
