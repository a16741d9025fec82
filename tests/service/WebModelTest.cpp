#include "service/WebModel.h"

#include "service/OpenSsl.h"
#include "service/StandInService.h"
#include "support/ProcessMemory.h"
#include "support/TemporaryHome.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QTest>
#include <QTimer>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using Behaviour = StandInService::Behaviour;

namespace {

WallClockTimer* midnightTimer = nullptr;
QDateTime fireDate;

} // namespace

/// Here the test lets it fire.
class WallClockTimer::Body {};
WallClockTimer::~WallClockTimer() = default;
WallClockTimer::WallClockTimer()
{
    midnightTimer = this;
}
void WallClockTimer::setFireDate(const QDateTime& date)
{
    fireDate = date.toUTC();
}

namespace {

constexpr int guide = 214;
constexpr int heartbeat = 21;
constexpr int upgrade = 24;
constexpr qsizetype bodyLimit = 8 * 1024 * 1024;
const QStringList heartbeatEvents{u"HeartbeatUpdated"_s};
const QStringList guideEvents{u"NewFeatureUpdated"_s, u"leafletUpdated"_s};

Behaviour reply(
    const QByteArray& body, const QByteArray& status = "200 OK", const QByteArray& headers = {})
{
    return
        [=](auto&, auto& socket, auto&) { StandInService::reply(socket, body, status, headers); };
}

/// A good answer in six pieces, nine seconds long.
void slow(const StandInService&, QSslSocket& socket, const ServiceRequest&)
{
    const auto body = OpenSsl::cipher(StandInService::heartbeatAnswer);
    const auto length = body.size() / 5;
    socket.write(
        "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n");
    for (int i = 0; i < 6; ++i) {
        const auto write = [&socket, piece = body.mid(i * length, length)] { socket.write(piece); };
        QTimer::singleShot(i * 1800ms, Qt::PreciseTimer, &socket, write);
    }
}

} // namespace

class WebModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
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
        m_process.kill();
        m_process.waitForFinished();
    }

    void requests_areSentAsTheServiceExpectsThem()
    {
        m_suite->setString(u"uuid"_s, u"DEV\"ICE"_s);

        m_model->refreshGudieInfo();
        m_model->sendHeartbeat(HeartBeatType::MidNight, u"1000"_s, nullptr);
        m_model->checkUpgrade(nullptr);

        QTRY_COMPARE(m_service->requests().size(), std::size_t{3});
        const QByteArray identification = R"({\"ui\":\"DEV\"ICE\",\"v\":\"1.2.3\"})";
        QCOMPARE(m_service->requests(guide).at(0).text, identification);
        QCOMPARE(m_service->requests(upgrade).at(0).text, identification);
        QCOMPARE(m_service->requests(heartbeat).at(0).text,
            R"({\"n\":\"1000\", \"ui\":\"DEV\"ICE\",\"ct\":\"7\",\"v\":\"1.2.3\",)"
            R"(\"type\":\"2\",\"ismac\":\"1\"})");
        for (const auto& request : m_service->requests()) {
            QVERIFY2(request.head.startsWith("POST /litecount.html HTTP/1.1\r\n"), request.head);
            QVERIFY(request.head.contains("User-Agent: MACTavelorLite1.2.3\r\n"));
            // Everything else of base64 travels escaped.
            static const QRegularExpression form(u"^f=\\d+&i=([A-Za-z0-9]|%2B|%2F|%3D)+$"_s);
            QVERIFY2(form.match(QString::fromLatin1(request.form)).hasMatch(), request.form);
        }
    }

    void deviceIdentifier_isMadeOnceForAll()
    {
        const auto uuid = m_model->uuid();

        static const QRegularExpression form(u"^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"_s);
        QVERIFY(form.match(uuid).hasMatch());
        const auto suiteFile = m_home->path() + u"/suite.conf"_s;
        QVERIFY(TemporaryHome::contents(suiteFile).contains("uuid=" + uuid.toLatin1()));
        QCOMPARE(makeModel({})->uuid(), uuid);
    }

    void guide_isFetchedTwoSecondsAfterTheStart()
    {
        QTRY_COMPARE(m_events, guideEvents);

        QVERIFY(m_sinceStart.elapsed() >= 1990 && m_sinceStart.elapsed() < 2500);
        const auto links = m_userInformation.value<GuideModel::Links>();
        QVERIFY(!links.empty() && links == m_model->guideModel()->leftPanel());

        m_service->setBehaviour(reply("no answer"));
        expectFailures();
    }

    void midnight_isReportedEachDay()
    {
        qputenv("TZ", "UTC");
        const auto model = makeModel(m_service->origin());
        const QDateTime tomorrow(QDate::currentDate().addDays(1), QTime(0, 0, 30), Qt::UTC);
        QCOMPARE(fireDate, tomorrow);

        Q_EMIT midnightTimer->fired();
        QCOMPARE(fireDate, tomorrow.addDays(1));
        QTRY_COMPARE(m_service->requests(heartbeat).size(), std::size_t{1});
        QVERIFY(m_service->requests(heartbeat).at(0).text.contains("1000"));

        qputenv("TZ", "XXX-12");
        Q_EMIT midnightTimer->clockDidChange();
        QCOMPARE(fireDate.time(), QTime(12, 0, 30));
        qputenv("TZ", "UTC");
    }

    void heartbeatAnswer_isKeptUntilTheNext()
    {
        std::optional<HeartbeatResponse> answer;
        const auto keep = [&answer](const auto& response) { answer = response; };
        m_model->sendHeartbeat(HeartBeatType::Boot, u"1"_s, keep);
        QTRY_COMPARE(m_events, heartbeatEvents);
        QVERIFY(answer && answer == m_model->heartbeatResponse());

        m_service->setBehaviour(StandInService::answering("{}"));
        m_model->sendHeartbeat(HeartBeatType::Boot, u"1"_s, nullptr);
        QTRY_COMPARE(m_events, heartbeatEvents + heartbeatEvents);
        QVERIFY(!m_model->heartbeatResponse());
    }

    void upgradeCheck_yieldsTheOffer()
    {
        const auto offer = [this](const QByteArray& answer) {
            m_service->setBehaviour(StandInService::answering(answer));
            std::optional<std::optional<UpgradeInfo>> got;
            m_model->checkUpgrade([&got](const auto& info) { got = info; });
            return QTest::qWaitFor([&got] { return got.has_value(); }) ? *got : UpgradeInfo{};
        };
        const UpgradeInfo whole{u"u"_s, u"m"_s, u"2"_s, u"e"_s};
        QVERIFY(offer(R"({"data":{"url":"u","md5":"m","ver":"2","exp":"e"}})") == whole);
        QVERIFY((offer(R"({"data":{"url":3,"md5":null,"ver":"2"}})") ==
                 UpgradeInfo{{}, {}, u"2"_s, {}}));
        for (const auto* none : {R"({"data":{"ver":"2"}})", R"({"data":[]})", "{}", "[]", "data"})
            QVERIFY(!offer(none));
    }

    void reply_countsUnlessItIsCutOrTooLong()
    {
        const auto good = OpenSsl::cipher(StandInService::heartbeatAnswer);
        const auto filled = [&](qsizetype size) { return good + QByteArray(size, ' '); };
        for (const auto& behaviour : {reply(good, "404 Not Found"),
                 reply(good, "407 Proxy Authentication Required"),
                 reply(good, "100 Continue\r\n\r\nHTTP/1.1 200 OK"),
                 reply(filled(bodyLimit - good.size()))}) {
            useService(m_certificates.path());
            m_service->setBehaviour(behaviour);
            m_model->midnightRefresh();
            QTRY_VERIFY(m_model->heartbeatResponse());
        }
        const auto packed = qCompress(filled(bodyLimit)).mid(4);
        const auto cut = [good](auto&, auto& socket, auto&) {
            socket.write("HTTP/1.1 200 OK\r\nContent-Length: 10000\r\n\r\n" + good);
            socket.disconnectFromHost();
        };
        for (const auto& behaviour : {reply(packed, "200 OK", "Content-Encoding: deflate\r\n"),
                 reply(filled(bodyLimit - good.size() + 1)),
                 reply("<html>hotel login</html>"),
                 Behaviour(cut)}) {
            useService(m_certificates.path());
            m_model->midnightRefresh();
            QTRY_VERIFY(m_model->heartbeatResponse());
            m_service->setBehaviour(behaviour);
            expectFailures();
        }
    }

    void redirection_isFollowedUnlessToPlainHttp()
    {
        const StandInService other(m_certificates.path());
        QTcpServer plain;
        QVERIFY(plain.listen(QHostAddress::LocalHost));
        const auto redirection = [](const QString& origin) {
            return reply({}, "307 Elsewhere", "Location: " + origin.toLatin1() + "/\r\n");
        };

        m_service->setBehaviour(redirection(other.origin()));
        m_model->midnightRefresh();
        QTRY_VERIFY(m_model->heartbeatResponse());

        m_service->setBehaviour(redirection(u"http://127.0.0.1:%1"_s.arg(plain.serverPort())));
        expectFailures();
        QVERIFY(!plain.hasPendingConnections());
    }

    void silence_endsAfterTwoSeconds()
    {
        m_service->setBehaviour(StandInService::misbehaviours().value(u"silent"_s));
        m_sinceStart.start();

        expectFailures();

        QVERIFY(m_sinceStart.elapsed() >= 1995 && m_sinceStart.elapsed() < 2400);
    }

    void slowReply_countsUnlessItDrips()
    {
        StandInService drippingService(m_certificates.path());
        drippingService.setBehaviour(StandInService::misbehaviours().value(u"dripping"_s));
        const auto drippingModel = makeModel(drippingService.origin());
        qint64 dripEnd = 0;
        drippingModel->checkUpgrade([&](const auto&) { dripEnd = m_sinceStart.elapsed(); });
        m_service->setBehaviour(slow);

        m_model->midnightRefresh();

        QTRY_VERIFY_WITH_TIMEOUT(m_model->heartbeatResponse(), 9500);
        QTRY_VERIFY_WITH_TIMEOUT(dripEnd > 9500, 5000);
        QCOMPARE(m_service->requests(guide).size(), std::size_t{1}); // no second one meanwhile
    }

    void mainThread_isHeldByNoReply_data()
    {
        QTest::addColumn<bool>("ends");
        QTest::newRow("endless") << false;
        QTest::newRow("pieces") << true;
    }

    void mainThread_isHeldByNoReply()
    {
        startService({u"--misbehave"_s, QString::fromLatin1(QTest::currentDataTag())});
        // What this thread works from one turn of its loop to the next, in milliseconds. Not what
        // passes meanwhile, which on a busy machine is other programs' time.
        const auto worked = [] {
            timespec time{};
            clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
            return time.tv_sec * 1000 + time.tv_nsec / 1'000'000;
        };
        auto before = worked();
        long longest = 0;
        QTimer ticks;
        ticks.callOnTimeout([&] {
            longest = std::max(longest, worked() - before);
            before = worked();
        });
        ticks.start(1ms);
        ProcessMemory::forgetPeak();
        const auto memory = ProcessMemory::peak();

        m_model->refreshGudieInfo();
        QFETCH(bool, ends);
        QTEST(
            QTest::qWaitFor([this] { return m_events.size() >= 2; }, ends ? 20'000 : 3000), "ends");

        QVERIFY2(longest < 100, qPrintable(QString::number(longest)));
        QVERIFY(ProcessMemory::peak() - memory < 200);
        QTEST(m_model->guideModel().has_value(), "ends");
    }

    void certificate_countsWhenTrustedByTheSystemOrTheFile()
    {
        const auto before = QSslConfiguration::defaultConfiguration();
        OpenSsl::makeCertificate(m_home->path());
        auto trusting = before;
        trusting.addCaCertificates(m_home->path() + u"/certificate.pem"_s);
        for (const auto* trustedBy : {"file", "system", "nobody"}) {
            useService(m_home->path());
            if (trustedBy != "file"_ba) // but another one
                trust(m_certificates.path());
            QSslConfiguration::setDefaultConfiguration(
                trustedBy == "system"_ba ? trusting : before);
            m_events.clear();
            m_model->refreshGudieInfo();
            QTRY_COMPARE(m_events, guideEvents);
            QCOMPARE(m_model->guideModel().has_value(), trustedBy != "nobody"_ba);
        }
    }

    void clientThatGoes_leavesItsAnswersBehind()
    {
        startService({});
        bool called = false;
        m_model->checkUpgrade([&called](const auto&) { called = true; });
        QVERIFY(m_process.waitForReadyRead()); // it prints what it is asked
        QTest::qSleep(200);                    // the answer waits for the main thread

        m_model.reset();

        QCoreApplication::processEvents();
        QVERIFY(!called);
    }

private:
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

    /// In a process of its own, which answers while this one is busy.
    void startService(const QStringList& arguments)
    {
        m_process.start(QCoreApplication::applicationDirPath() + u"/stand_in_service"_s,
            arguments + QStringList{u"--certificate"_s, m_certificates.path()});
        QVERIFY(m_process.waitForReadyRead());
        const auto origin = QString::fromLatin1(m_process.readLine()).section(u' ', 0, 0);
        m_model = makeModel(origin.section(u'=', 1));
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
    QProcess m_process;
    std::unique_ptr<TemporaryHome> m_home;
    std::unique_ptr<StandInService> m_service;
    std::unique_ptr<PreferencesSuite> m_suite;
    std::unique_ptr<NotificationCenter> m_notifications;
    std::unique_ptr<WebModel> m_model;
    std::vector<Disposable> m_observers;
    QElapsedTimer m_sinceStart;
    QStringList m_events;
    QVariant m_userInformation;
};

QTEST_GUILESS_MAIN(WebModelTest)
#include "WebModelTest.moc"
