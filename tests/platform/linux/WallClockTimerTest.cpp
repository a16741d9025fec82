#include "platform/WallClockTimer.h"
#include "platform/linux/FakeClock.h"

#include <QSignalSpy>
#include <QTest>

using namespace std::chrono_literals;

class WallClockTimerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// Each next one is set from the firing of the one before.
    void dates_areNotFiredBeforeTheirTime()
    {
        WallClockTimer timer;
        QDateTime date;
        int count = 0;
        const auto setNext = [&] {
            date = QDateTime::currentDateTime().addMSecs(70);
            timer.setFireDate(date);
        };
        connect(&timer, &WallClockTimer::fired, this, [&] {
            QVERIFY(QDateTime::currentDateTime() >= date);
            if (++count < 3)
                setNext();
        });
        setNext();
        QTRY_COMPARE(count, 3);
    }

    void datesThatHavePassed_fireSoon()
    {
        const auto epoch = QDateTime::fromSecsSinceEpoch(0);
        for (const auto& date :
            {QDateTime::currentDateTime().addDays(-1), epoch, epoch.addDays(-1)}) {
            WallClockTimer timer;
            QSignalSpy spy(&timer, &WallClockTimer::fired);
            timer.setFireDate(date);
            QVERIFY(spy.isEmpty());
            QTRY_COMPARE(spy.size(), 1);
        }
    }

    /// A sleep over the date is the same to the timer: the wall clock has gone on.
    void clockThatIsSet_isFollowed()
    {
        WallClockTimer timer;
        QSignalSpy fired(&timer, &WallClockTimer::fired);
        QSignalSpy changes(&timer, &WallClockTimer::clockDidChange);
        timer.setFireDate(QDateTime::currentDateTime().addMSecs(50)); // the next one replaces it
        timer.setFireDate(QDateTime::currentDateTime().addSecs(3600));
        QVERIFY(!fired.wait(100));

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
