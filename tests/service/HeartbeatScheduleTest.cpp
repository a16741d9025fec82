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
        row("Asia/Kolkata", "2026-12-30T12:00:00Z 2026-12-30T18:30:30Z 2026-12-31T18:30:30Z");
        // Clocks go forward, back, and forward at midnight; a whole day is left out.
        row("Europe/Berlin", "2026-03-28T12:00:00Z 2026-03-28T23:00:30Z 2026-03-29T22:00:30Z");
        row("Europe/Vienna", "2026-10-24T12:00:00Z 2026-10-24T22:00:30Z 2026-10-25T23:00:30Z");
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
            const auto next = schedule.next(now);
            QVERIFY(next.has_value());
            QCOMPARE(next->toUTC().toString(Qt::ISODate), date);
            schedule.markReported(*next);
            now = *next;
        }
    }

    void clockThatIsSet_losesNoDayAndReportsNoneTwice_data()
    {
        QTest::addColumn<QString>("reported"); // that of May 2nd; empty for not yet
        QTest::addColumn<QString>("now");
        QTest::addColumn<QString>("next");
        const auto row = [](const char* name, const char* times) {
            const auto parts = QString::fromLatin1(times).split(u' ');
            QTest::newRow(name) << parts[0] << parts[1] << parts[2];
        };
        row("forward, to before the report", " 2026-05-02T00:00:05Z 2026-05-02T00:00:30Z");
        row("back, to before the report",
            "2026-05-02T00:00:30Z 2026-05-02T00:00:10Z 2026-05-03T00:00:30Z");
        row("back over midnight", "2026-05-02T00:00:30Z 2026-05-01T23:59:55Z 2026-05-03T00:00:30Z");
        row("back by years", "2026-05-02T00:00:30Z 2016-05-01T12:00:00Z 2016-05-02T00:00:30Z");
        row("not at all, but reported after days of sleep",
            "2026-05-05T08:00:00Z 2026-05-05T08:00:00Z 2026-05-06T00:00:30Z");
    }

    void clockThatIsSet_losesNoDayAndReportsNoneTwice()
    {
        QFETCH(QString, reported);
        QFETCH(QString, now);
        HeartbeatSchedule schedule(1U << 31);
        schedule.next(QDateTime(QDate(2026, 5, 1), QTime(12, 0)));

        if (!reported.isEmpty())
            schedule.markReported(QDateTime::fromString(reported, Qt::ISODate));

        const auto next = schedule.next(QDateTime::fromString(now, Qt::ISODate));
        QTEST(next->toUTC().toString(Qt::ISODate), "next");
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
