#include "service/HeartbeatSchedule.h"

#include <QTest>

#include <ctime>
#include <limits>

using namespace std::chrono_literals;

class HeartbeatScheduleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { useZone("UTC"); }

    void offset_isLessThanAMinute()
    {
        QCOMPARE(HeartbeatSchedule(0).offset(), 0ms);
        QCOMPARE(HeartbeatSchedule(1U << 31).offset(), 30'000ms);
        QCOMPARE(HeartbeatSchedule(std::numeric_limits<quint32>::max()).offset(), 59'999ms);
    }

    void reports_comeAtTheStartOfEachLocalDay_data()
    {
        QTest::addColumn<QStringList>("due"); // behind the start, one after the other
        const auto row = [](const char* zone, const char* times) {
            QTest::newRow(zone) << QString::fromLatin1(times).split(u' ');
        };
        row("UTC", "2026-03-01T23:59:50Z 2026-03-02T00:00:30Z 2026-03-03T00:00:30Z");
        row("UTC0", "2026-03-02T00:00:05Z 2026-03-03T00:00:30Z"); // just after midnight
        // Clocks go forward, and forward at midnight; a whole day is left out.
        row("Europe/Berlin", "2026-03-28T12:00:00Z 2026-03-28T23:00:30Z 2026-03-29T22:00:30Z");
        row("Africa/Cairo",
            "2024-04-24T12:00:00Z 2024-04-24T22:00:30Z 2024-04-25T22:00:30Z 2024-04-26T21:00:30Z");
        row("Pacific/Apia", "2011-12-29T12:00:00Z 2011-12-30T10:00:30Z 2011-12-31T10:00:30Z");
    }

    void reports_comeAtTheStartOfEachLocalDay()
    {
        QFETCH(QStringList, due);
        useZone(QTest::currentDataTag());
        HeartbeatSchedule schedule(1U << 31);
        auto now = QDateTime::fromString(due.takeFirst(), Qt::ISODate);
        for (const auto& date : due) {
            now = schedule.next(now).value();
            QCOMPARE(now.toUTC().toString(Qt::ISODate), date);
            schedule.markReported(now);
        }
    }

    void clockThatIsSet_losesNoDayAndReportsNoneTwice()
    {
        const char* const cases[][3] = {
            // when the report of May 2nd is sent, if at all; what time it is then; the next report
            {"", "2026-05-02T00:00:05Z", "2026-05-02T00:00:30Z"},
            {"2026-05-02T00:00:30Z", "2026-05-02T00:00:10Z", "2026-05-03T00:00:30Z"},
            {"2026-05-02T00:00:30Z", "2026-05-01T23:59:55Z", "2026-05-03T00:00:30Z"},
            {"2026-05-02T00:00:30Z", "2016-05-01T12:00:00Z", "2016-05-02T00:00:30Z"},
            {"2026-05-05T08:00:00Z", "2026-05-05T08:00:00Z", "2026-05-06T00:00:30Z"}, // slept
        };
        const auto time = [](const char* text) {
            return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate);
        };
        for (const auto& [reported, now, next] : cases) {
            HeartbeatSchedule schedule(1U << 31);
            schedule.next(time("2026-05-01T12:00:00Z"));
            if (*reported != '\0')
                schedule.markReported(time(reported));
            QCOMPARE(schedule.next(time(now)), time(next));
        }
    }

private:
    static void useZone(const QByteArray& zone)
    {
        qputenv("TZ", zone);
        tzset();
    }
};

QTEST_APPLESS_MAIN(HeartbeatScheduleTest)
#include "HeartbeatScheduleTest.moc"
