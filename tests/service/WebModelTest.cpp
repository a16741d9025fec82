#include "service/WebModel.h"

#include "service/Misbehaviour.h"
#include "service/OpenSsl.h"
#include "service/StandInService.h"
#include "support/ProcessMemory.h"
#include "support/TemporaryHome.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

Q_DECLARE_METATYPE(OpenSsl::Certificate)

namespace {

const auto version = QStringLiteral("1.2.3");
constexpr int guide = 214;
constexpr int heartbeat = 21;
constexpr int upgrade = 24;

StandInService::Behaviour text(const QByteArray& text)
{
    return [text](const StandInService&, QSslSocket& socket, const ServiceRequest&) {
        StandInService::reply(socket, OpenSsl::encipher(text));
    };
}

} // namespace

class WebModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { OpenSsl::makeCertificate(m_certificates.path()); }

    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_home = std::make_unique<TemporaryHome>();
        useService(m_certificates.path());
        m_suite = PreferencesSuite::open(QStringLiteral("suite"), m_home->path());
        m_notifications = std::make_unique<NotificationCenter>();
        m_events.clear();
        for (const auto* name : {"HeartbeatUpdated", "NewFeatureUpdated", "leafletUpdated"}) {
            const auto event = QString::fromLatin1(name);
            m_observers.push_back(
                m_notifications->addObserver(event, [this, event](const QVariant& userInformation) {
                    m_events << event;
                    m_userInformation = userInformation;
                }));
        }
        m_model = makeModel(7);
    }

    void cleanup()
    {
        m_model.reset();
        m_observers.clear();
    }

    void requests_areSentAsTheServiceExpectsThem()
    {
        m_suite->setString(QStringLiteral("uuid"), QStringLiteral("DEVICE"));

        m_model->refreshGudieInfo();
        m_model->sendHeartbeat(HeartBeatType::MidNight, QStringLiteral("1000"), nullptr);
        m_model->checkUpgrade(nullptr);

        QTRY_COMPARE(m_service->requests().size(), std::size_t{3});
        const QByteArray identification = R"({\"ui\":\"DEVICE\",\"v\":\"1.2.3\"})";
        QCOMPARE(m_service->requests(guide).at(0).text, identification);
        QCOMPARE(m_service->requests(upgrade).at(0).text, identification);
        QCOMPARE(m_service->requests(heartbeat).at(0).text,
            R"({\"n\":\"1000\", \"ui\":\"DEVICE\",\"ct\":\"7\",\"v\":\"1.2.3\",)"
            R"(\"type\":\"2\",\"ismac\":\"1\"})");
        for (const auto& request : m_service->requests()) {
            QCOMPARE(request.method, "POST");
            QCOMPARE(request.path, "/litecount.html");
            QCOMPARE(request.headers.value("user-agent"), "MACTavelorLite1.2.3");
            QVERIFY(request.headers.value("content-type")
                        .startsWith("application/x-www-form-urlencoded"));
            // Everything else of base64 travels escaped.
            static const QRegularExpression form(
                QStringLiteral("^f=\\d+&i=([A-Za-z0-9]|%2B|%2F|%3D)+$"));
            QVERIFY2(form.match(QString::fromLatin1(request.form)).hasMatch(), request.form);
        }
    }

    void quoteInAValue_isEscapedOnceMore()
    {
        m_suite->setString(QStringLiteral("uuid"), QStringLiteral("a\"b"));

        m_model->checkUpgrade(nullptr);

        QTRY_COMPARE(m_service->requests().size(), std::size_t{1});
        QCOMPARE(m_service->requests().at(0).text, R"({\"ui\":\"a\"b\",\"v\":\"1.2.3\"})");
    }

    void deviceIdentifier_isMadeOnceForAll()
    {
        const auto uuid = m_model->uuid();

        static const QRegularExpression form(
            QStringLiteral("^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"));
        QVERIFY(form.match(uuid).hasMatch());
        QVERIFY(TemporaryHome::contents(m_home->path() + QStringLiteral("/suite.conf"))
                    .contains("uuid=" + uuid.toLatin1()));
        QCOMPARE(makeModel(0)->uuid(), uuid);
    }

    void guide_isFetchedTwoSecondsAfterTheStart()
    {
        QElapsedTimer sinceStart;
        sinceStart.start();

        QTRY_COMPARE(m_events,
            (QStringList{QStringLiteral("NewFeatureUpdated"), QStringLiteral("leafletUpdated")}));

        QVERIFY(sinceStart.elapsed() >= 2000);
        QCOMPARE(m_service->requests().size(), std::size_t{1});
        const auto links = m_userInformation.value<GuideModel::Links>();
        QCOMPARE(links.size(), std::size_t{1});
        QCOMPARE(links.begin()->second, QUrl(QStringLiteral("https://example.com/left")));
        QCOMPARE(links, m_model->guideModel()->leftPanel());
    }

    void guideThatCannotBeDecoded_leavesNone()
    {
        m_model->refreshGudieInfo();
        QTRY_VERIFY(m_model->guideModel());

        m_service->setBehaviour(text("{}"));
        m_events.clear();
        m_model->refreshGudieInfo();

        QTRY_COMPARE(m_events.size(), 2);
        QVERIFY(!m_model->guideModel());
        QVERIFY(!m_userInformation.isValid());
    }

    void heartbeatAnswer_isKeptAndAnnounced()
    {
        std::optional<HeartbeatResponse> answer;
        m_model->sendHeartbeat(HeartBeatType::Boot,
            QStringLiteral("1"),
            [&answer](const auto& response) { answer = response; });

        QTRY_COMPARE(m_events, QStringList{QStringLiteral("HeartbeatUpdated")});
        QCOMPARE(m_model->heartbeatResponse()->data.ct, 7);
        QVERIFY(answer == m_model->heartbeatResponse());
    }

    void heartbeatAnswerThatCannotBeDecoded_clearsTheLastOne_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::newRow("no JSON") << QByteArray("{");
        QTest::newRow("an empty text") << QByteArray();
        QTest::newRow("another record") << QByteArray(R"({"status":1,"info":""})");
        QTest::newRow("nested 100,000 deep") << QByteArray(100'000, '[') + QByteArray(100'000, ']');
    }

    void heartbeatAnswerThatCannotBeDecoded_clearsTheLastOne()
    {
        QFETCH(QByteArray, answer);
        m_model->midnightRefresh();
        QTRY_VERIFY(m_model->heartbeatResponse());

        m_service->setBehaviour(text(answer));
        m_events.clear();
        m_model->midnightRefresh();

        QTRY_COMPARE(m_events, QStringList{QStringLiteral("HeartbeatUpdated")});
        QVERIFY(!m_model->heartbeatResponse());
    }

    void upgradeCheck_yieldsTheOffer_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("offered"); // null for no offer
        QTest::newRow("complete")
            << QByteArray(R"({"status":0,"data":{"url":"u","md5":"m","ver":"2","exp":"e"}})")
            << QStringLiteral("2");
        QTest::newRow("an address alone")
            << QByteArray(R"({"data":{"url":"u"}})") << QStringLiteral("");
        QTest::newRow("no address") << QByteArray(R"({"data":{"ver":"2"}})") << QString();
        QTest::newRow("no data") << QByteArray(R"({"status":0})") << QString();
        QTest::newRow("data that is a list") << QByteArray(R"({"data":[]})") << QString();
        QTest::newRow("a list") << QByteArray("[]") << QString();
        QTest::newRow("a text") << QByteArray("\"data\"") << QString();
        QTest::newRow("no JSON") << QByteArray("data") << QString();
    }

    void upgradeCheck_yieldsTheOffer()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, offered);
        m_service->setBehaviour(text(answer));

        bool called = false;
        std::optional<UpgradeInfo> offer;
        m_model->checkUpgrade([&](const auto& information) {
            called = true;
            offer = information;
        });

        QTRY_VERIFY(called);
        QCOMPARE(offer ? offer->ver : QString(), offered);
        QCOMPARE(offer.has_value(), !offered.isNull());
    }

    void errorPage_countsWhenItIsAReply_data()
    {
        QTest::addColumn<QByteArray>("status");
        QTest::newRow("a known one") << QByteArray("500 Internal Server Error");
        QTest::newRow("one without a name") << QByteArray("429 Too Many Requests");
        QTest::newRow("a proxy's") << QByteArray("407 Proxy Authentication Required");
    }

    void errorPage_countsWhenItIsAReply()
    {
        QFETCH(QByteArray, status);
        m_service->setBehaviour(
            [status](const StandInService& service, QSslSocket& socket, const ServiceRequest&) {
                StandInService::reply(socket, OpenSsl::encipher(service.answer(heartbeat)), status);
            });

        m_model->midnightRefresh();

        QTRY_VERIFY(m_model->heartbeatResponse());
    }

    void misbehavingService_isAFailure_data()
    {
        QTest::addColumn<QString>("way");
        for (const auto& name : Misbehaviour::names())
            QTest::newRow(qPrintable(name)) << name;
    }

    void misbehavingService_isAFailure()
    {
        QFETCH(QString, way);
        m_model->midnightRefresh();
        m_model->refreshGudieInfo();
        QTRY_VERIFY(m_model->heartbeatResponse());
        QTRY_COMPARE(m_events.size(), 3);
        m_service->setBehaviour(Misbehaviour::named(way));
        ProcessMemory::forgetPeak();
        const auto memory = ProcessMemory::peak();

        expectFailures(5000);

        QVERIFY2(ProcessMemory::peak() - memory < 100,
            qPrintable(QString::number(ProcessMemory::peak() - memory)));
    }

    void certificateThatIsNotValid_isAFailure_data()
    {
        QTest::addColumn<OpenSsl::Certificate>("kind");
        QTest::addColumn<bool>("trusted");
        QTest::newRow("expired") << OpenSsl::Certificate::Expired << true;
        QTest::newRow("of another host") << OpenSsl::Certificate::OfAnotherHost << true;
        QTest::newRow("not trusted") << OpenSsl::Certificate::Valid << false;
    }

    void certificateThatIsNotValid_isAFailure()
    {
        QFETCH(OpenSsl::Certificate, kind);
        QFETCH(bool, trusted);
        OpenSsl::makeCertificate(m_home->path(), kind);
        useService(m_home->path());
        if (!trusted)
            qunsetenv("SSL_CERT_FILE");
        m_model = makeModel(7);

        expectFailures(5000);

        QVERIFY(m_service->requests().empty());
    }

    void serviceThatIsNotThere_isAFailure()
    {
        m_service.reset();

        expectFailures(5000);
    }

    void clientThatGoes_leavesItsRequestsBehind()
    {
        m_service->setBehaviour(Misbehaviour::named(QStringLiteral("silent")));
        bool called = false;
        m_model->checkUpgrade([&called](const auto&) { called = true; });
        QTRY_COMPARE(m_service->requests().size(), std::size_t{1});

        m_model.reset();

        m_service->setBehaviour(std::mem_fn(&StandInService::replyProperly));
        m_model = makeModel(0);
        m_model->midnightRefresh();
        QTRY_VERIFY(m_model->heartbeatResponse());
        QVERIFY(!called);
    }

private:
    void useService(const QString& certificates)
    {
        qputenv("SSL_CERT_FILE", (certificates + QStringLiteral("/certificate.pem")).toUtf8());
        m_service = std::make_unique<StandInService>(certificates);
    }

    std::unique_ptr<WebModel> makeModel(qint64 ct)
    {
        return std::make_unique<WebModel>(WebModel::Identity{version, *m_suite, ct},
            QUrl(m_service->origin()),
            *m_notifications,
            1U << 31);
    }

    /// All three requests end without an answer, and what was there stays, but for the guide.
    void expectFailures(int milliseconds)
    {
        const auto before = m_model->heartbeatResponse();
        m_events.clear();
        int failures = 0;
        m_model->sendHeartbeat(HeartBeatType::MidNight,
            QStringLiteral("1000"),
            [&failures](const auto& response) { failures += response ? 0 : 1; });
        m_model->checkUpgrade([&failures](const auto& offer) { failures += offer ? 0 : 1; });
        m_model->refreshGudieInfo();

        QTRY_COMPARE_WITH_TIMEOUT(m_events,
            (QStringList{QStringLiteral("NewFeatureUpdated"), QStringLiteral("leafletUpdated")}),
            milliseconds);
        QTRY_COMPARE_WITH_TIMEOUT(failures, 2, milliseconds);
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
    QStringList m_events;
    QVariant m_userInformation;
};

QTEST_GUILESS_MAIN(WebModelTest)
#include "WebModelTest.moc"
