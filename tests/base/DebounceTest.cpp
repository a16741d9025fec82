#include "base/Debounce.h"

#include <QElapsedTimer>
#include <QTest>

#include <optional>

using namespace std::chrono_literals;

class DebounceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void calls_runTheActionOnceWhenTheyHaveStopped()
    {
        int runs = 0;
        QElapsedTimer sinceStart;
        QElapsedTimer sinceLastCall;
        Debounce debounce(150ms, [&] {
            ++runs;
            QVERIFY(sinceLastCall.elapsed() >= 140); // timers may be 5 % early
        });
        QTimer calls;
        calls.callOnTimeout([&] {
            debounce.call();
            sinceLastCall.start();
            if (sinceStart.elapsed() > 300)
                calls.stop();
        });
        sinceStart.start();
        calls.start(10ms);

        QTRY_COMPARE(runs, 1);
        QVERIFY(!calls.isActive());
        QVERIFY(!debounce.isPending());
    }

    void callsWithoutEnd_runTheActionWhenPatienceIsOver()
    {
        int runs = 0;
        QTimer calls;
        Debounce debounce(
            10s,
            [&] {
                if (++runs == 3)
                    calls.stop();
            },
            50ms);
        calls.callOnTimeout([&] { debounce.call(); });
        calls.start(1ms);

        QTRY_COMPARE(runs, 3);
    }

    void patience_beginsWithTheFirstCall()
    {
        QElapsedTimer sinceCall;
        qint64 delay = -1;
        Debounce debounce(
            10s, [&] { delay = sinceCall.elapsed(); }, 100ms);
        debounce.call();
        debounce.cancel();
        QTest::qWait(60);
        sinceCall.start();
        debounce.call();

        QTRY_VERIFY(delay >= 0);
        QVERIFY(delay >= 90);
    }

    void cancelledOrDestroyed_doesNotRun()
    {
        int runs = 0;
        bool isOver = false;
        Debounce cancelled(1ms, [&] { ++runs; });
        std::optional<Debounce> destroyed(std::in_place, 1ms, [&] { ++runs; });
        Debounce later(20ms, [&] { isOver = true; });
        for (auto* const debounce : {&cancelled, &*destroyed, &later})
            debounce->call();
        QVERIFY(cancelled.isPending());
        cancelled.cancel();
        QVERIFY(!cancelled.isPending());
        destroyed.reset();

        QTRY_VERIFY(isOver);
        QCOMPARE(runs, 0);
    }
};

QTEST_GUILESS_MAIN(DebounceTest)
#include "DebounceTest.moc"
