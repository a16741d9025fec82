#include "desktop/HelperProcess.h"
#include "desktop/VirtualDesktop.h"
#include "service/OpenSsl.h"
#include "service/StandInService.h"

#include <QDateTime>
#include <QTest>

/// What the running helper says to its service.
class ServiceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        OpenSsl::makeCertificate(m_certificates.path());
        m_desktop.startWindowManager();
    }

    void start_asksForUpgradesAndFetchesTheGuide()
    {
        StandInService service(m_certificates.path());
        HelperProcess helper(m_desktop);
        tell(helper, service);
        helper.start();

        QTRY_COMPARE(service.requests().size(), std::size_t{2});

        const auto uuid = helper.home().suiteValue(QStringLiteral("uuid")).toLatin1();
        QVERIFY(!uuid.isEmpty());
        const auto text = R"({\"ui\":\")" + uuid + R"(\",\"v\":\"1.0.0\"})";
        QCOMPARE(service.requests().at(0).function, 24);
        QCOMPARE(service.requests().at(0).text, text);
        QCOMPARE(service.requests().at(1).function, 214);
        QCOMPARE(service.requests().at(1).text, text);
    }

    void midnight_isReportedWithinAMinute()
    {
        StandInService ordinaryService(m_certificates.path());
        StandInService changingService(m_certificates.path());
        VirtualDesktop otherDesktop;
        HelperProcess ordinary(m_desktop);
        HelperProcess changing(otherDesktop);
        tell(ordinary, ordinaryService);
        tell(changing, changingService);
        const auto midnight = QDateTime::currentDateTimeUtc().addSecs(3);
        ordinary.setEnvironment(QStringLiteral("TZ"), zoneWithMidnightAt(midnight));
        changing.setEnvironment(QStringLiteral("TZ"),
            zoneWithMidnightAt(midnight) + clocksGoForwardOn(midnight.date().addDays(1)));

        QDateTime reported;
        connect(&ordinaryService, &StandInService::requested, [&](const ServiceRequest& request) {
            if (request.function == 21)
                reported = QDateTime::currentDateTimeUtc();
        });
        ordinary.start();
        changing.start();

        QTRY_COMPARE_WITH_TIMEOUT(ordinaryService.requests(21).size(), std::size_t{1}, 75'000);
        QTRY_COMPARE_WITH_TIMEOUT(changingService.requests(21).size(), std::size_t{1}, 75'000);
        QVERIFY2(reported >= midnight, qPrintable(reported.toString(Qt::ISODate)));
        const auto uuid = ordinary.home().suiteValue(QStringLiteral("uuid")).toLatin1();
        QCOMPARE(ordinaryService.requests(21).at(0).text,
            R"({\"n\":\"1000\", \"ui\":\")" + uuid +
                R"(\",\"ct\":\"0\",\"v\":\"1.0.0\",\"type\":\"2\",\"ismac\":\"1\"})");
    }

    void originThatIsNotHttps_isRefusedInOneLine_data()
    {
        QTest::addColumn<QString>("origin");
        QTest::newRow("http") << QStringLiteral("http://127.0.0.1:9");
        QTest::newRow("a path") << QStringLiteral("https://127.0.0.1:9/x");
        QTest::newRow("no host") << QStringLiteral("https://");
        QTest::newRow("no URL") << QStringLiteral("127.0.0.1");
    }

    void originThatIsNotHttps_isRefusedInOneLine()
    {
        QFETCH(QString, origin);
        HelperProcess helper(m_desktop);
        helper.setEnvironment(QStringLiteral("TAVELOR_SERVICE_URL"), origin);
        helper.start();

        QByteArray errors;
        QTRY_VERIFY((errors += helper.process().readAllStandardError()).endsWith('\n'));
        QCOMPARE(errors,
            "TAVELOR_SERVICE_URL is not an https origin like https://service.tavelor.example; "
            "it is not used.\n");
    }

private:
    /// A POSIX time zone that is so far east of Greenwich. All seconds count.
    static QString zoneWithMidnightAt(const QDateTime& utc)
    {
        const auto east = utc.time().secsTo(QTime(23, 59, 59)) + 1;
        return QStringLiteral("AAA-") +
               QTime(0, 0).addSecs(east).toString(QStringLiteral("hh:mm:ss"));
    }

    /// At its midnight, which that day therefore has not.
    static QString clocksGoForwardOn(const QDate& day)
    {
        const auto number = [](const QDate& date) {
            const bool pastLeapDay = QDate::isLeapYear(date.year()) && date.dayOfYear() > 59;
            return QStringLiteral("J%1/0").arg(date.dayOfYear() - (pastLeapDay ? 1 : 0));
        };
        return QStringLiteral("BBB,%1,%2").arg(number(day), number(day.addDays(60)));
    }

    void tell(HelperProcess& helper, const StandInService& service) const
    {
        helper.setEnvironment(QStringLiteral("TAVELOR_SERVICE_URL"), service.origin());
        helper.setEnvironment(QStringLiteral("SSL_CERT_FILE"),
            m_certificates.path() + QStringLiteral("/certificate.pem"));
    }

    VirtualDesktop m_desktop;
    QTemporaryDir m_certificates;
};

QTEST_GUILESS_MAIN(ServiceTest)
#include "ServiceTest.moc"
