#include "platform/WallClockTimer.h"
#include "platform/linux/FakeClock.h"

#include <QSignalSpy>
#include <QTest>

using namespace std::chrono_literals;

class WallClockTimerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void date_isNotFiredBeforeItsTime()
    {
        WallClockTimer timer;
        QDateTime fired;
        QSignalSpy spy(&timer, &WallClockTimer::fired);
        connect(
            &timer, &WallClockTimer::fired, this, [&] { fired = QDateTime::currentDateTime(); });
        const auto date = QDateTime::currentDateTime().addMSecs(200);

        timer.setFireDate(date);

        QTRY_COMPARE(spy.size(), 1);
        QVERIFY(fired >= date);
    }

    void dateThatHasPassed_firesSoon_data()
    {
        QTest::addColumn<QDateTime>("date");
        QTest::newRow("yesterday") << QDateTime::currentDateTime().addDays(-1);
        QTest::newRow("before all times") << QDateTime::fromSecsSinceEpoch(0);
        QTest::newRow("before even that") << QDateTime::fromSecsSinceEpoch(-86400);
    }

    void dateThatHasPassed_firesSoon()
    {
        QFETCH(QDateTime, date);
        WallClockTimer timer;
        QSignalSpy spy(&timer, &WallClockTimer::fired);

        timer.setFireDate(date);

        QVERIFY(spy.isEmpty());
        QTRY_COMPARE(spy.size(), 1);
    }

    void laterDate_replacesTheFirst()
    {
        WallClockTimer timer;
        WallClockTimer other;
        QSignalSpy spy(&timer, &WallClockTimer::fired);
        QSignalSpy otherSpy(&other, &WallClockTimer::fired);

        timer.setFireDate(QDateTime::currentDateTime().addMSecs(50));
        timer.setFireDate(QDateTime::currentDateTime().addYears(100));
        other.setFireDate(QDateTime::currentDateTime().addMSecs(100));

        QTRY_COMPARE(otherSpy.size(), 1);
        QVERIFY(spy.isEmpty());
    }

    void nextDate_mayBeSetFromTheFiring()
    {
        WallClockTimer timer;
        QSignalSpy spy(&timer, &WallClockTimer::fired);
        connect(&timer, &WallClockTimer::fired, this, [&timer, &spy] {
            if (spy.size() < 3)
                timer.setFireDate(QDateTime::currentDateTime().addMSecs(10));
        });

        timer.setFireDate(QDateTime::currentDateTime());

        QTRY_COMPARE(spy.size(), 3);
    }

    /// A sleep over the date is the same to the timer: the wall clock has gone on.
    void clockThatIsSet_isFollowed()
    {
        WallClockTimer timer;
        QSignalSpy fired(&timer, &WallClockTimer::fired);
        QSignalSpy changes(&timer, &WallClockTimer::clockDidChange);
        timer.setFireDate(QDateTime::currentDateTime().addSecs(3600));

        FakeClock::set(-3600s);
        QTRY_COMPARE(changes.size(), 1);
        FakeClock::set(3599s); // back to an hour before the date
        QTRY_COMPARE(changes.size(), 2);
        QVERIFY(fired.isEmpty());

        FakeClock::set(3602s);
        QTRY_COMPARE(fired.size(), 1);
        QCOMPARE(changes.size(), 2);

        timer.setFireDate(QDateTime::currentDateTime().addMSecs(100));
        QTRY_COMPARE(fired.size(), 2);
    }
};

QTEST_GUILESS_MAIN(WallClockTimerTest)
#include "WallClockTimerTest.moc"
