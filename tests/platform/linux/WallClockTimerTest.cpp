#include "platform/WallClockTimer.h"

#include <QSignalSpy>
#include <QTest>

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
};

QTEST_GUILESS_MAIN(WallClockTimerTest)
#include "WallClockTimerTest.moc"
