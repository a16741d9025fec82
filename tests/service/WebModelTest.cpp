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

Q_DECLARE_METATYPE(Behaviour)

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
const QStringList guideEvents{u"NewFeatureUpdated"_s, u"leafletUpdated"_s};

/// The wire's bytes, whatever is asked, and then the end of the connection.
Behaviour raw(const QByteArray& bytes)
{
    return [bytes](const StandInService&, QSslSocket& socket, const ServiceRequest&) {
        socket.write(bytes);
        socket.disconnectFromHost();
    };
}

/// A reply with headers of its own.
Behaviour reply(const QByteArray& body, const char* status, const QByteArray& headers = {})
{
    return raw("HTTP/1.1 "_ba + status + "\r\n" + headers +
               "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
}

Behaviour deflated(const QByteArray& body)
{
    return reply(qCompress(body).mid(4), "200 OK", "Content-Encoding: deflate\r\n");
}

/// A good answer for whoever follows in the right way.
Behaviour redirecting(const char* status, const char* method)
{
    return [=](const StandInService& service, QSslSocket& socket, const ServiceRequest& request) {
        if (request.path == "/litecount.html")
            reply("elsewhere", status, "Location: /other\r\n")(service, socket, request);
        else if (request.path == "/other" && request.method == method)
            StandInService::reply(socket, OpenSsl::encipher(service.answer(heartbeat)));
    };
}

/// A good answer in ten pieces: the first after `delay`, the others so far apart.
Behaviour inPieces(std::chrono::milliseconds delay, std::chrono::milliseconds interval)
{
    return [=](const StandInService& service, QSslSocket& socket, const ServiceRequest& request) {
        const auto body = OpenSsl::encipher(service.answer(request.function));
        const auto head = "HTTP/1.1 200 OK\r\nContent-Length: "_ba;
        const auto bytes = head + QByteArray::number(body.size()) + "\r\n\r\n" + body;
        const auto length = bytes.size() / 9;
        for (int i = 0; i < 10; ++i) {
            QTimer::singleShot(delay + i * interval, Qt::PreciseTimer, &socket, [=, &socket] {
                socket.write(bytes.mid(i * length, length));
            });
        }
    };
}

} // namespace

class WebModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        OpenSsl::makeCertificate(m_certificates.path());
        useService(m_certificates.path());
    }

    void init()
    {
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        m_home = std::make_unique<TemporaryHome>();
        useService(m_certificates.path());
        m_suite = PreferencesSuite::open(u"suite"_s, m_home->path());
        m_notifications = std::make_unique<NotificationCenter>();
        m_events.clear();
        for (const auto& event : QStringList{u"HeartbeatUpdated"_s} + guideEvents) {
            m_observers.push_back(
                m_notifications->addObserver(event, [this, event](const QVariant& userInformation) {
                    m_events << event;
                    m_userInformation = userInformation;
                }));
        }
        m_model = makeModel(m_service->origin());
    }

    void cleanup()
    {
        m_model.reset();
        m_observers.clear();
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
            QCOMPARE(request.method, "POST");
            QCOMPARE(request.path, "/litecount.html");
            QCOMPARE(request.headers.value("user-agent"), "MACTavelorLite1.2.3");
            QVERIFY(request.headers.value("content-type")
                        .startsWith("application/x-www-form-urlencoded"));
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
        QVERIFY(TemporaryHome::contents(m_home->path() + u"/suite.conf"_s)
                    .contains("uuid=" + uuid.toLatin1()));
        QCOMPARE(makeModel({})->uuid(), uuid);
    }

    void guide_isFetchedTwoSecondsAfterTheStart()
    {
        QElapsedTimer sinceStart;
        sinceStart.start();

        QTRY_COMPARE(m_events, guideEvents);

        QVERIFY(sinceStart.elapsed() >= 1990 && sinceStart.elapsed() < 2500);
        const auto links = m_userInformation.value<GuideModel::Links>();
        QCOMPARE(links.size(), std::size_t{1});
        QCOMPARE(links.begin()->second, QUrl(u"https://example.com/left"_s));
        QCOMPARE(links, m_model->guideModel()->leftPanel());

        m_service->setBehaviour(StandInService::answering("{}"));
        m_model->refreshGudieInfo();
        QTRY_COMPARE(m_events, guideEvents + guideEvents);
        QVERIFY(!m_model->guideModel());
        QVERIFY(!m_userInformation.isValid());
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
        m_model->sendHeartbeat(
            HeartBeatType::Boot, u"1"_s, [&answer](const auto& response) { answer = response; });
        QTRY_COMPARE(m_events, QStringList{u"HeartbeatUpdated"_s});
        QCOMPARE(m_model->heartbeatResponse()->data.ct, 7);
        QVERIFY(answer == m_model->heartbeatResponse());

        for (const auto* other : {"{", "", R"({"status":1,"info":""})"}) {
            m_service->setBehaviour(StandInService::answering(other));
            m_events.clear();
            m_model->sendHeartbeat(HeartBeatType::Boot, u"1"_s, nullptr);
            QTRY_COMPARE(m_events, QStringList{u"HeartbeatUpdated"_s});
            QVERIFY(!m_model->heartbeatResponse());
        }
    }

    void upgradeCheck_yieldsTheOffer()
    {
        QStringList members;
        const auto offer = [&](const QByteArray& answer) {
            m_service->setBehaviour(StandInService::answering(answer));
            bool called = false;
            m_model->checkUpgrade([&](const std::optional<UpgradeInfo>& info) {
                called = true;
                members = info ? QStringList{info->url, info->md5, info->ver, info->exp}
                               : QStringList{u"none"_s};
            });
            return QTest::qWaitFor([&] { return called; }) ? members.join(u' ') : u"silence"_s;
        };
        const auto* const whole = R"({"data":{"url":"u","md5":"m","ver":"2","exp":"e"}})";
        const auto* const address = R"({"data":{"url":"u"}})";
        const auto* const others = R"({"data":{"url":3,"md5":null,"ver":"2"}})";
        QCOMPARE(offer(whole), u"u m 2 e"_s);
        QCOMPARE(offer(address), u"u   "_s);
        QCOMPARE(offer(others), u"  2 "_s);
        for (const auto* none : {R"({"data":{"ver":"2"}})", R"({"data":[]})", "{}", "[]", "data"})
            QCOMPARE(offer(none), u"none"_s);
    }

    void reply_countsWhenItIsWhole_data()
    {
        QTest::addColumn<Behaviour>("behaviour");
        QTest::addColumn<bool>("counts");
        const auto row = [](const char* name, const Behaviour& behaviour, bool counts) {
            QTest::newRow(name) << behaviour << counts;
        };
        const auto good = OpenSsl::encipher(m_service->answer(heartbeat));
        const auto length = "Content-Length: " + QByteArray::number(good.size()) + "\r\n\r\n";
        const auto filled = [&](qsizetype size) { return good + QByteArray(size, ' '); };
        row("an error page", reply(good, "404 Not Found"), true);
        row("an error without a name", reply(good, "429 Too Many Requests"), true);
        row("a proxy's error", reply(good, "407 Proxy Authentication Required"), true);
        row("a redirection to a GET", redirecting("302 Found", "GET"), true);
        row("a redirection of a POST", redirecting("307 Temporary Redirect", "POST"), true);
        row("for ever redirected", reply({}, "302 Found", "Location: /\r\n"), false);
        row("after an informational one",
            raw("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\n" + length + good),
            true);
        row("compressed", deflated(good), true);
        row("too long once unpacked", deflated(filled(bodyLimit)), false);
        row("just short enough", reply(filled(bodyLimit - good.size()), "200 OK"), true);
        row("too long", reply(filled(bodyLimit - good.size() + 1), "200 OK"), false);
        row("cut off behind all that counts",
            raw("HTTP/1.1 200 OK\r\nContent-Length: 10000\r\n\r\n" + good),
            false);
        row("no base64", reply("<html>hotel login</html>", "200 OK"), false);
        row("after 1.8 seconds", inPieces(1800ms, 0ms), true);
    }

    void reply_countsWhenItIsWhole()
    {
        QFETCH(Behaviour, behaviour);
        QFETCH(bool, counts);
        m_model->midnightRefresh();
        QTRY_VERIFY(m_model->heartbeatResponse());
        m_service->setBehaviour(behaviour);
        m_events.clear();
        if (!counts)
            return expectFailures();

        m_model->midnightRefresh();

        QTRY_COMPARE(m_events, QStringList{u"HeartbeatUpdated"_s});
        QVERIFY(m_model->heartbeatResponse());
    }

    void redirectionToPlainHttp_isNotFollowed()
    {
        QTcpServer plain;
        QVERIFY(plain.listen(QHostAddress::LocalHost));
        const auto origin = "http://127.0.0.1:" + QByteArray::number(plain.serverPort());
        m_service->setBehaviour(
            reply({}, "307 Temporary Redirect", "Location: " + origin + "/\r\n"));

        expectFailures();

        QVERIFY(!plain.hasPendingConnections());
    }

    void silence_endsAfterTwoSeconds()
    {
        m_service->setBehaviour(StandInService::misbehaviours().at(u"silent"_s));
        QElapsedTimer time;
        time.start();

        expectFailures();

        QVERIFY2(time.elapsed() >= 1995 && time.elapsed() < 2400,
            qPrintable(QString::number(time.elapsed())));
    }

    void slowReply_countsUnlessItDrips()
    {
        StandInService drippingService(m_certificates.path());
        drippingService.setBehaviour(StandInService::misbehaviours().at(u"dripping"_s));
        const auto drippingModel = makeModel(drippingService.origin());
        QElapsedTimer time;
        time.start();
        qint64 dripEnd = 0;
        drippingModel->checkUpgrade([&](const auto&) { dripEnd = time.elapsed(); });
        m_service->setBehaviour(inPieces(0ms, 900ms));

        m_model->midnightRefresh();

        QTRY_VERIFY_WITH_TIMEOUT(m_model->heartbeatResponse(), 9500);
        QVERIFY(time.elapsed() > 7500);
        QTRY_VERIFY_WITH_TIMEOUT(dripEnd > 0, 5000);
        QVERIFY(dripEnd > 9500);
        QCOMPARE(m_service->requests(guide).size(), std::size_t{1}); // no second one meanwhile
    }

    void mainThread_isHeldByNoReply_data()
    {
        QTest::addColumn<QByteArray>("answer");
        constexpr int many = 4'000'000;
        QTest::newRow("endless, byte by byte") << QByteArray();
        QTest::newRow("pieces in a picture")
            << m_service->answer(guide).replace("base64,", QByteArray("a,").repeated(many / 2));
        QTest::newRow("commas in JSON") << '[' + QByteArray(many, ',') + ']';
        QTest::newRow("a long text") << "{\"data\":\"" + QByteArray(6'000'000, 'a') + "\"}";
    }

    void mainThread_isHeldByNoReply()
    {
        QFETCH(QByteArray, answer);
        const auto file = m_home->path() + u"/answer"_s;
        TemporaryHome::writeFile(file, answer);
        QStringList arguments{u"--misbehave"_s, u"endless"_s};
        if (!answer.isEmpty())
            arguments = {u"--answer"_s, file};
        arguments << u"--certificate"_s << m_certificates.path();
        QProcess service;
        service.start(QCoreApplication::applicationDirPath() + u"/stand_in_service"_s, arguments);
        QVERIFY(service.waitForReadyRead());
        const auto origin = QString::fromLatin1(service.readLine()).section(u' ', 0, 0);
        m_model = makeModel(origin.section(u'=', 1));
        QElapsedTimer sinceTick;
        qint64 longest = 0;
        QTimer ticks;
        ticks.callOnTimeout([&] { longest = std::max(longest, sinceTick.restart()); });
        ticks.setTimerType(Qt::PreciseTimer);
        ticks.start(1ms);
        sinceTick.start();
        ProcessMemory::forgetPeak();
        const auto memory = ProcessMemory::peak();

        m_events.clear();
        m_model->refreshGudieInfo();
        const bool ends = QTest::qWaitFor([this] { return m_events.size() == 2; }, 3000);

        QVERIFY2(longest < 100, qPrintable(QString::number(longest)));
        QVERIFY(ProcessMemory::peak() - memory < 200);
        QCOMPARE(ends, !answer.isEmpty());
        QCOMPARE(m_model->guideModel().has_value(), answer.contains("leftPanel"));
        service.kill();
        service.waitForFinished();
    }

    void certificate_countsWhenTrustedByTheSystemOrTheFile_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("trustedBy");
        QTest::addColumn<bool>("counts");
        QTest::newRow("file") << u"127.0.0.1"_s << u"file"_s << true;
        QTest::newRow("system") << u"127.0.0.1"_s << u"system"_s << true;
        QTest::newRow("nobody") << u"127.0.0.1"_s << u"nobody"_s << false;
        QTest::newRow("another host's") << u"127.0.0.2"_s << u"file"_s << false;
    }

    void certificate_countsWhenTrustedByTheSystemOrTheFile()
    {
        QFETCH(QString, host);
        QFETCH(QString, trustedBy);
        QFETCH(bool, counts);
        OpenSsl::makeCertificate(m_home->path(), host);
        useService(m_home->path());
        const auto before = QSslConfiguration::defaultConfiguration();
        auto system = before;
        system.addCaCertificates(m_home->path() + u"/certificate.pem"_s);
        if (trustedBy == u"system")
            QSslConfiguration::setDefaultConfiguration(system);
        if (trustedBy != u"file") // but another one
            qputenv("SSL_CERT_FILE", (m_certificates.path() + u"/certificate.pem"_s).toUtf8());
        m_model = makeModel(m_service->origin());

        m_model->midnightRefresh();
        m_events.clear();
        m_model->refreshGudieInfo();

        QTRY_COMPARE(m_events.size(), counts ? 3 : 2);
        QCOMPARE(m_model->guideModel().has_value(), counts);
        QCOMPARE(m_service->requests().empty(), !counts);
        QSslConfiguration::setDefaultConfiguration(before);
    }

    void clientThatGoes_leavesItsRequestsBehind()
    {
        m_service->setBehaviour(inPieces(100ms, 0ms));
        bool called = false;
        m_model->checkUpgrade([&called](const auto&) { called = true; });
        QTRY_COMPARE(m_service->requests().size(), std::size_t{1});

        m_model = makeModel(m_service->origin());

        m_model->midnightRefresh();
        QTRY_VERIFY(m_model->heartbeatResponse());
        QVERIFY(!called);
    }

private:
    void useService(const QString& certificates)
    {
        qputenv("SSL_CERT_FILE", (certificates + u"/certificate.pem"_s).toUtf8());
        m_service = std::make_unique<StandInService>(certificates);
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
        m_model->sendHeartbeat(HeartBeatType::MidNight,
            u"1000"_s,
            [&failures](const auto& response) { failures += response ? 0 : 1; });
        m_model->checkUpgrade([&failures](const auto& offer) { failures += offer ? 0 : 1; });
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
    QStringList m_events;
    QVariant m_userInformation;
};

QTEST_GUILESS_MAIN(WebModelTest)
#include "WebModelTest.moc"
