#include "desktop/HelperProcess.h"
#include "desktop/X11Desktop.h"
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

    void helper_asksOnceAndReportsAtMidnight()
    {
        StandInService service(m_certificates.path());
        const auto midnight = QDateTime::currentDateTimeUtc().addSecs(3);
        const auto east = midnight.time().secsTo(QTime(23, 59, 59)) + 1;
        HelperProcess helper(m_desktop);
        helper.setEnvironment(u"TZ"_s, QTime(0, 0).addSecs(east).toString(u"'AAA-'hh:mm:ss"_s));
        helper.setEnvironment(u"TAVELOR_SERVICE_URL"_s, service.origin());
        helper.setEnvironment(u"SSL_CERT_FILE"_s, m_certificates.path() + u"/certificate.pem"_s);
        helper.start();

        QTRY_COMPARE_WITH_TIMEOUT(service.requests(21).size(), std::size_t{1}, 75'000);
        QVERIFY(QDateTime::currentDateTimeUtc() >= midnight);
        QTRY_COMPARE(service.requests(214).size(), std::size_t{1});

        QCOMPARE(service.requests().size(), std::size_t{3});
        const auto uuid = helper.home().suiteValue(u"uuid"_s).toLatin1();
        const auto text = R"({\"ui\":\")" + uuid + R"(\",\"v\":\"1.0.0\"})";
        QCOMPARE(service.requests(24).at(0).text, text);
        QCOMPARE(service.requests(214).at(0).text, text);
        QCOMPARE(service.requests(21).at(0).text,
            R"({\"n\":\"1000\", \"ui\":\")" + uuid +
                R"(\",\"ct\":\"0\",\"v\":\"1.0.0\",\"type\":\"2\",\"ismac\":\"1\"})");
    }

    void originThatIsNotHttps_isRefusedInOneLine()
    {
        for (const auto* origin : {"http://127.0.0.1:9", "https://127.0.0.1:9/x", "https://"}) {
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
    X11Desktop m_desktop;
    QTemporaryDir m_certificates;
};

QTEST_GUILESS_MAIN(ServiceTest)
#include "ServiceTest.moc"
