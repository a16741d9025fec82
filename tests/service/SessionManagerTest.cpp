#include "service/WebModelFixture.h"
#include "support/ProcessMemory.h"

#include <QProcess>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QTimer>

using namespace std::chrono_literals;
using Behaviour = StandInService::Behaviour;

namespace {

constexpr qsizetype bodyLimit = 8 * 1024 * 1024;

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

/// What replies may do to their client, and whose replies count.
class SessionManagerTest : public WebModelFixture {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        WebModelFixture::cleanup();
        m_process.kill();
        m_process.waitForFinished();
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
    /// In a process of its own, which answers while this one is busy.
    void startService(const QStringList& arguments)
    {
        m_process.start(QCoreApplication::applicationDirPath() + u"/stand_in_service"_s,
            arguments + QStringList{u"--certificate"_s, m_certificates.path()});
        QVERIFY(m_process.waitForReadyRead());
        const auto origin = QString::fromLatin1(m_process.readLine()).section(u' ', 0, 0);
        m_model = makeModel(origin.section(u'=', 1));
    }

    QProcess m_process;
};

QTEST_GUILESS_MAIN(SessionManagerTest)
#include "SessionManagerTest.moc"
