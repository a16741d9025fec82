#include "platform/Workspace.h"
#include "platform/linux/BusDaemon.h"
#include "platform/linux/FakeLogind.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

/// How the workspace hears that the machine wakes.
class SleepTest : public QObject {
    Q_OBJECT

public:
    SleepTest()
    {
        qunsetenv("DISPLAY");
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    }

private Q_SLOTS:
    void init() { m_bus.start(); }
    void cleanup() { m_bus.stop(); }

    void wake_isTold_fallingAsleepIsNot()
    {
        Workspace workspace;
        const QSignalSpy wakes(&workspace, &Workspace::didWake);
        QTRY_VERIFY(isListening());
        FakeLogind logind(m_bus.connection());

        logind.tell(true);
        FakeLogind::send(m_bus.connection(), {}); // without a value
        FakeLogind::send(m_bus.connection(), {QStringLiteral("false")});
        logind.tell(false);
        QTRY_COMPARE(wakes.count(), 1);
        logind.tell(true);
        logind.tell(false);
        QTRY_COMPARE(wakes.count(), 2);
    }

    void anotherProgramsSignal_isNoWake()
    {
        Workspace workspace;
        const QSignalSpy wakes(&workspace, &Workspace::didWake);
        QTRY_VERIFY(isListening());

        FakeLogind::send(m_bus.connection(), {false});
        FakeLogind logind(m_bus.connection());
        logind.tell(false);
        logind.tell(false);

        QTRY_VERIFY(wakes.count() >= 2);
        QCOMPARE(wakes.count(), 2);
    }

    void logind_mayLeaveAndComeBack()
    {
        Workspace workspace;
        const QSignalSpy wakes(&workspace, &Workspace::didWake);
        QTRY_VERIFY(isListening());
        for (int i = 1; i <= 2; ++i) {
            // Each time from another connection, as a restarted service has.
            const auto name = QStringLiteral("logind %1").arg(i);
            {
                FakeLogind logind(QDBusConnection::connectToBus(m_bus.address(), name));
                logind.tell(false);
                QTRY_COMPARE(wakes.count(), i);
            }
            QDBusConnection::disconnectFromBus(name);
        }
    }

    void bus_mayBeMissingAndComeAndRestart()
    {
        m_bus.stop();
        Workspace workspace;
        const QSignalSpy wakes(&workspace, &Workspace::didWake);
        for (int i = 1; i <= 2; ++i) {
            m_bus.start();
            QTRY_VERIFY_WITH_TIMEOUT(isListening(), 20'000);
            FakeLogind(m_bus.connection()).tell(false);
            QTRY_COMPARE(wakes.count(), i);
            m_bus.stop();
        }
        m_bus.start();
    }

    void busThatHangs_holdsNothingUp()
    {
        m_bus.pause();
        QElapsedTimer time;
        time.start();
        {
            Workspace workspace;
            QTest::qWait(100); // for the other thread to be in the midst of it
        }
        const auto elapsed = time.elapsed();
        m_bus.resume();
        QVERIFY(elapsed < 5000);
    }

private:
    bool isListening() const { return m_bus.isListenedTo(FakeLogind::interface()); }

    BusDaemon m_bus{BusDaemon::Start::Later};
};

QTEST_GUILESS_MAIN(SleepTest)
#include "SleepTest.moc"
