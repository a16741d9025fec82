#include "service/HeartbeatSchedule.h"

#include <QTest>

#include <ctime>
#include <limits>

using namespace std::chrono_literals;

class HeartbeatScheduleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void offset_isLessThanAMinute()
    {
        QCOMPARE(HeartbeatSchedule(0).offset(), 0ms);
        QCOMPARE(HeartbeatSchedule(1U << 31).offset(), 30'000ms);
        QCOMPARE(HeartbeatSchedule(std::numeric_limits<quint32>::max()).offset(), 59'999ms);
    }

    void reports_comeAtTheStartOfEachLocalDay_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QString>("start");   // UTC
        QTest::addColumn<QStringList>("due"); // UTC, one after the other

        const auto row = [](const char* name,
                             const char* zone,
                             const char* start,
                             std::initializer_list<const char*> due) {
            QStringList dates;
            for (const auto* date : due)
                dates << QString::fromLatin1(date) + u'Z';
            QTest::newRow(name) << QByteArray(zone) << QString::fromLatin1(start) + u'Z' << dates;
        };
        row("ten seconds before midnight",
            "UTC",
            "2026-03-01T23:59:50",
            {"2026-03-02T00:00:30", "2026-03-03T00:00:30"});
        row("just after midnight", "UTC", "2026-03-02T00:00:05", {"2026-03-03T00:00:30"});
        row("half an hour off the hour",
            "Asia/Kolkata",
            "2026-03-01T12:00:00",
            {"2026-03-01T18:30:30", "2026-03-02T18:30:30"});
        row("clocks go forward",
            "Europe/Berlin",
            "2026-03-28T12:00:00",
            {"2026-03-28T23:00:30", "2026-03-29T22:00:30", "2026-03-30T22:00:30"});
        row("clocks go back",
            "Europe/Berlin",
            "2026-10-24T12:00:00",
            {"2026-10-24T22:00:30", "2026-10-25T23:00:30"});
        row("a day without midnight",
            "Africa/Cairo",
            "2024-04-24T12:00:00",
            {"2024-04-24T22:00:30", "2024-04-25T22:00:30", "2024-04-26T21:00:30"});
        row("a day with two midnights",
            "America/Havana",
            "2026-10-31T12:00:00",
            {"2026-11-01T04:00:30", "2026-11-02T05:00:30"});
        row("a year ends",
            "Pacific/Auckland",
            "2026-12-30T11:30:00",
            {"2026-12-31T11:00:30", "2027-01-01T11:00:30"});
        row("a day left out",
            "Pacific/Apia",
            "2011-12-29T12:00:00",
            {"2011-12-30T10:00:30", "2011-12-31T10:00:30"});
    }

    void reports_comeAtTheStartOfEachLocalDay()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QString, start);
        QFETCH(QStringList, due);
        const LocalZone local(zone);
        HeartbeatSchedule schedule(1U << 31);

        auto now = QDateTime::fromString(start, Qt::ISODate);
        for (const auto& date : due) {
            const auto next = schedule.next(now);
            QVERIFY(next.has_value());
            QCOMPARE(next->toUTC().toString(Qt::ISODate), date);
            schedule.markReported(*next);
            now = *next;
        }
    }

    void afterDaysOfSleep_reportsAreNotMadeUpFor()
    {
        const LocalZone local("Europe/Berlin");
        HeartbeatSchedule schedule(0);
        schedule.next(utc("2026-05-01T12:00:00Z"));

        schedule.markReported(utc("2026-05-05T08:00:00Z")); // late
        const auto next = schedule.next(utc("2026-05-05T08:00:00Z"));

        QCOMPARE(next->toUTC(), utc("2026-05-05T22:00:00Z"));
    }

    void clockSetBackOverMidnight_reportsNoDayTwice()
    {
        const LocalZone local("UTC");
        HeartbeatSchedule schedule(0);
        schedule.next(utc("2026-05-01T12:00:00Z"));
        schedule.markReported(utc("2026-05-02T00:00:00Z"));

        QCOMPARE(schedule.next(utc("2026-05-01T23:59:55Z"))->toUTC(), utc("2026-05-03T00:00:00Z"));
    }

    void clockSetBetweenMidnightAndTheReport_losesNoDay()
    {
        const LocalZone local("UTC");
        HeartbeatSchedule schedule(1U << 31);
        schedule.next(utc("2026-05-01T12:00:00Z"));

        QCOMPARE(schedule.next(utc("2026-05-02T00:00:05Z"))->toUTC(), utc("2026-05-02T00:00:30Z"));
        schedule.markReported(utc("2026-05-02T00:00:30Z"));
        QCOMPARE(schedule.next(utc("2026-05-02T00:00:10Z"))->toUTC(), utc("2026-05-03T00:00:30Z"));
    }

    void clockSetBackByYears_isFollowed()
    {
        const LocalZone local("UTC");
        HeartbeatSchedule schedule(0);
        schedule.next(utc("2036-05-01T12:00:00Z"));
        schedule.markReported(utc("2036-05-02T00:00:00Z"));

        QCOMPARE(schedule.next(utc("2026-05-01T12:00:00Z"))->toUTC(), utc("2026-05-02T00:00:00Z"));
    }

private:
    /// The process's time zone, while it lives.
    class LocalZone {
    public:
        explicit LocalZone(const QByteArray& zone) { set(zone); }
        ~LocalZone() { set("UTC"); }
        LocalZone(const LocalZone&) = delete;
        LocalZone& operator=(const LocalZone&) = delete;

    private:
        static void set(const QByteArray& zone)
        {
            qputenv("TZ", zone);
            tzset();
        }
    };

    static QDateTime utc(const char* date)
    {
        return QDateTime::fromString(QString::fromLatin1(date), Qt::ISODate);
    }
};

QTEST_APPLESS_MAIN(HeartbeatScheduleTest)
#include "HeartbeatScheduleTest.moc"
