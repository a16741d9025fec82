#include "desktop/HelperProcess.h"
#include "desktop/VirtualDesktop.h"
#include "service/OpenSsl.h"
#include "service/StandInService.h"

#include <QDateTime>
#include <QTest>

using namespace Qt::StringLiterals;

/// What the running helper says to its service.
class ServiceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        OpenSsl::makeCertificate(m_certificates.path());
        m_desktop.startWindowManager();
    }
    void cleanup() { m_helper.reset(); }

    void start_asksForUpgradesAndFetchesTheGuideOnce()
    {
        start(u"UTC"_s);

        QTRY_COMPARE(m_service->requests().size(), std::size_t{2});
        QTest::qWait(2500); // none comes after that

        const auto text = R"({\"ui\":\")" + uuid() + R"(\",\"v\":\"1.0.0\"})";
        QCOMPARE(m_service->requests().size(), std::size_t{2});
        QCOMPARE(m_service->requests().at(0).function, 24);
        QCOMPARE(m_service->requests().at(0).text, text);
        QCOMPARE(m_service->requests().at(1).function, 214);
        QCOMPARE(m_service->requests().at(1).text, text);
    }

    void midnight_isReportedWithinAMinute()
    {
        const auto midnight = QDateTime::currentDateTimeUtc().addSecs(3);
        const auto east = midnight.time().secsTo(QTime(23, 59, 59)) + 1;
        start(QTime(0, 0).addSecs(east).toString(u"'AAA-'hh:mm:ss"_s));

        QTRY_COMPARE_WITH_TIMEOUT(m_service->requests(21).size(), std::size_t{1}, 75'000);

        QVERIFY(QDateTime::currentDateTimeUtc() >= midnight);
        QCOMPARE(m_service->requests(21).at(0).text,
            R"({\"n\":\"1000\", \"ui\":\")" + uuid() +
                R"(\",\"ct\":\"0\",\"v\":\"1.0.0\",\"type\":\"2\",\"ismac\":\"1\"})");
    }

    void originThatIsNotHttps_isRefusedInOneLine()
    {
        for (const auto* origin :
            {"http://127.0.0.1:9", "https://127.0.0.1:9/x", "https://", "a"}) {
            HelperProcess helper(m_desktop);
            helper.setEnvironment(u"TAVELOR_SERVICE_URL"_s, QString::fromLatin1(origin));
            helper.start();

            QByteArray errors;
            QTRY_VERIFY((errors += helper.process().readAllStandardError()).endsWith('\n'));
            QCOMPARE(errors,
                "TAVELOR_SERVICE_URL is not an https origin like https://service.tavelor.example; "
                "it is not used.\n");
        }
    }

private:
    /// The helper, with a service, in a time zone (POSIX).
    void start(const QString& zone)
    {
        m_service = std::make_unique<StandInService>(m_certificates.path());
        m_helper = std::make_unique<HelperProcess>(m_desktop);
        m_helper->setEnvironment(u"TAVELOR_SERVICE_URL"_s, m_service->origin());
        m_helper->setEnvironment(u"SSL_CERT_FILE"_s, m_certificates.path() + u"/certificate.pem"_s);
        m_helper->setEnvironment(u"TZ"_s, zone);
        m_helper->start();
    }

    QByteArray uuid() { return m_helper->home().suiteValue(u"uuid"_s).toLatin1(); }

    VirtualDesktop m_desktop;
    QTemporaryDir m_certificates;
    std::unique_ptr<StandInService> m_service;
    std::unique_ptr<HelperProcess> m_helper;
};

QTEST_GUILESS_MAIN(ServiceTest)
#include "ServiceTest.moc"
