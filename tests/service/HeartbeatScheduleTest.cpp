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

    void reports_comeAtTheStartOfEachLocalDay()
    {
        // A start, and the reports after it.
        expect("UTC", "2026-03-01T23:59:50Z 2026-03-02T00:00:30Z 2026-03-03T00:00:30Z");
        expect("UTC", "2026-03-02T00:00:05Z 2026-03-03T00:00:30Z");
        // Clocks go forward, and forward at midnight; a whole day is left out.
        expect("Europe/Berlin", "2026-03-28T12:00:00Z 2026-03-28T23:00:30Z 2026-03-29T22:00:30Z");
        expect("Africa/Cairo", "2024-04-25T12:00:00Z 2024-04-25T22:00:30Z 2024-04-26T21:00:30Z");
        expect("Pacific/Apia", "2011-12-29T12:00:00Z 2011-12-30T10:00:30Z 2011-12-31T10:00:30Z");
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

    static QDateTime time(const QByteArray& text)
    {
        return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate);
    }

    static void expect(const QByteArray& zone, const QByteArray& times)
    {
        useZone(zone);
        HeartbeatSchedule schedule(1U << 31);
        const auto parts = times.split(' ');
        for (int i = 1; i < parts.size(); ++i) {
            QCOMPARE(schedule.next(time(parts[i - 1])), time(parts[i]));
            schedule.markReported(time(parts[i]));
        }
    }
};

QTEST_APPLESS_MAIN(HeartbeatScheduleTest)
#include "HeartbeatScheduleTest.moc"
