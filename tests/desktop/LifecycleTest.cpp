#include "desktop/HelperProcess.h"
#include "desktop/VirtualDesktop.h"

#include <QDBusConnection>
#include <QTest>

#include <csignal>

/// Hears what is posted on the session bus.
class NotificationListener : public QObject {
    Q_OBJECT

public:
    explicit NotificationListener(const QString& busAddress)
        : m_bus(QDBusConnection::connectToBus(busAddress, QStringLiteral("listener")))
    {
        m_bus.connect(QString(),
            QStringLiteral("/com/zemra/tavelor"),
            QStringLiteral("com.zemra.tavelor.DistributedNotification"),
            QStringLiteral("Posted"),
            this,
            SLOT(hear(QString, QString, QVariantMap)));
    }
    ~NotificationListener() override
    {
        QDBusConnection::disconnectFromBus(QStringLiteral("listener"));
    }

    QStringList names;

public Q_SLOTS:
    void hear(const QString& name, const QString& object, const QVariantMap& information)
    {
        names << name + object + QString::number(information.size());
    }

private:
    QDBusConnection m_bus;
};

class LifecycleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void endOfTheProcess_isAnnounced_data()
    {
        QTest::addColumn<int>("signal");
        QTest::addColumn<QString>("open");
        QTest::newRow("terminated") << SIGTERM << "true";
        QTest::newRow("interrupted") << SIGINT << "true";
        QTest::newRow("closed and terminated") << SIGTERM << "false";
    }

    void endOfTheProcess_isAnnounced()
    {
        QFETCH(int, signal);
        QFETCH(QString, open);
        HelperProcess helper(m_desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"));
        helper.home().writeSuiteValue(QStringLiteral("IsOpenPlayer"), open);
        NotificationListener listener(m_desktop.busAddress());
        helper.start();
        QTRY_VERIFY(!helper.lines().isEmpty());

        kill(static_cast<pid_t>(helper.process().processId()), signal);

        QVERIFY(helper.waitForEnd());
        QCOMPARE(helper.process().exitStatus(), QProcess::NormalExit);
        QCOMPARE(helper.process().exitCode(), 0);
        QTRY_COMPARE(listener.names, QStringList{QStringLiteral("com.zemra.fendix.mac.ter0")});
    }

    void silentNameServer_doesNotHoldUpTheEnd()
    {
        HelperProcess helper(m_desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"));
        helper.setEnvironment(
            QStringLiteral("TAVELOR_SERVICE_URL"), QStringLiteral("https://service.example"));
        helper.setEnvironment(QStringLiteral("LD_PRELOAD"), QStringLiteral(SLOW_RESOLVER));
        helper.setEnvironment(
            QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
        helper.start();
        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("red"));

        helper.process().terminate();

        QVERIFY(helper.waitForEnd());
        QCOMPARE(helper.process().exitCode(), 0);
    }

    void secondInstance_saysSoAndEnds()
    {
        HelperProcess first(m_desktop);
        first.addVideo(QStringLiteral("r"), QStringLiteral("red"));
        first.start();
        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("red"));

        QProcess second;
        second.setProcessEnvironment(first.process().processEnvironment());
        second.start(first.process().program(), {});

        QVERIFY(second.waitForFinished());
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(
            second.readAllStandardError(), "TavelorHelper is already running in this session.\n");
        QCOMPARE(m_desktop.leftColour(), QStringLiteral("red"));
    }

    void withoutASessionBus_theWallpaperPlays()
    {
        VirtualDesktop desktop;
        desktop.stopBus();
        HelperProcess helper(desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"));
        helper.start();
        QTRY_COMPARE(desktop.leftColour(), QStringLiteral("red"));
    }

    void whenTheSessionBusGoes_theWallpaperPlaysOn()
    {
        VirtualDesktop desktop;
        HelperProcess helper(desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"));
        helper.addVideo(QStringLiteral("g"), QStringLiteral("lime"));
        helper.start();
        QTRY_COMPARE(desktop.leftColour(), QStringLiteral("red"));

        desktop.stopBus();
        helper.home().writeSuiteValue(QStringLiteral("CurrentVideoSign"), QStringLiteral("g"));

        QTRY_COMPARE(desktop.leftColour(), QStringLiteral("lime"));
    }

    void withoutADisplay_oneSentenceSaysSo()
    {
        HelperProcess helper(m_desktop);
        QProcess process;
        auto environment = m_desktop.environment();
        environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":987"));
        process.setProcessEnvironment(environment);
        process.start(HelperProcess::program(), {});

        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 1);
        QCOMPARE(process.readAllStandardError().count('\n'), 1);
    }

    void unopenablePreferences_endTheProcess()
    {
        HelperProcess helper(m_desktop);
        TemporaryHome::writeFile(helper.home().container() + QStringLiteral("/Preferences"),
            "a file where the folder belongs");
        helper.start();

        QVERIFY(helper.waitForEnd());
        QVERIFY(helper.process().exitStatus() == QProcess::CrashExit);
        QVERIFY(helper.process().readAllStandardError().contains("cannot be opened"));
    }

private:
    VirtualDesktop m_desktop;
};

QTEST_GUILESS_MAIN(LifecycleTest)
#include "LifecycleTest.moc"
