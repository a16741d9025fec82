#include "desktop/HelperProcess.h"
#include "desktop/VirtualDesktop.h"

#include <QDBusConnection>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

/// Hears what is posted on the session bus.
class NotificationListener : public QObject {
    Q_OBJECT

public:
    explicit NotificationListener(const QString& busAddress)
        : m_bus(QDBusConnection::connectToBus(busAddress, u"listener"_s))
    {
        m_bus.connect(QString(),
            u"/com/zemra/tavelor"_s,
            u"com.zemra.tavelor.DistributedNotification"_s,
            u"Posted"_s,
            this,
            SLOT(hear(QString, QString, QVariantMap)));
    }
    ~NotificationListener() override { QDBusConnection::disconnectFromBus(u"listener"_s); }

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
        QTest::newRow("hung up") << SIGHUP << "true";
        QTest::newRow("closed and terminated") << SIGTERM << "false";
    }

    void endOfTheProcess_isAnnounced()
    {
        QFETCH(int, signal);
        QFETCH(QString, open);
        HelperProcess helper(m_desktop);
        helper.addVideo(u"r"_s, u"red"_s);
        helper.home().writeSuiteValue(u"IsOpenPlayer"_s, open);
        NotificationListener listener(m_desktop.busAddress());
        helper.start();
        QTRY_VERIFY(!helper.lines().isEmpty());

        kill(static_cast<pid_t>(helper.process().processId()), signal);

        QVERIFY(helper.waitForEnd());
        QCOMPARE(helper.process().exitStatus(), QProcess::NormalExit);
        QCOMPARE(helper.process().exitCode(), 0);
        QTRY_COMPARE(listener.names, QStringList{u"com.zemra.fendix.mac.ter0"_s});
    }

    void silentNameServer_doesNotHoldUpTheEnd()
    {
        HelperProcess helper(m_desktop);
        helper.addVideo(u"r"_s, u"red"_s);
        helper.setEnvironment(u"TAVELOR_SERVICE_URL"_s, u"https://service.example"_s);
        helper.setEnvironment(u"LD_PRELOAD"_s, QString::fromUtf8(SLOW_RESOLVER));
        helper.setEnvironment(u"ASAN_OPTIONS"_s, u"verify_asan_link_order=0"_s);
        helper.start();
        QTRY_COMPARE(m_desktop.leftColour(), u"red"_s);

        helper.process().terminate();

        QVERIFY(helper.waitForEnd());
        QCOMPARE(helper.process().exitCode(), 0);
    }

    void secondInstance_saysSoAndEnds()
    {
        HelperProcess first(m_desktop);
        first.addVideo(u"r"_s, u"red"_s);
        first.start();
        QTRY_COMPARE(m_desktop.leftColour(), u"red"_s);

        QProcess second;
        second.setProcessEnvironment(first.process().processEnvironment());
        second.start(first.process().program(), {});

        QVERIFY(second.waitForFinished());
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(
            second.readAllStandardError(), "TavelorHelper is already running in this session.\n");
        QCOMPARE(m_desktop.leftColour(), u"red"_s);
    }

    void withoutASessionBus_theWallpaperPlays_data()
    {
        QTest::addColumn<bool>("hasBus");
        QTest::newRow("there is none") << false;
        QTest::newRow("it goes") << true;
    }

    void withoutASessionBus_theWallpaperPlays()
    {
        QFETCH(bool, hasBus);
        VirtualDesktop desktop;
        if (!hasBus)
            desktop.stopBus();
        HelperProcess helper(desktop);
        helper.addVideo(u"r"_s, u"red"_s);
        helper.addVideo(u"g"_s, u"lime"_s);
        helper.start();
        QTRY_COMPARE(desktop.leftColour(), u"red"_s);

        if (hasBus)
            desktop.stopBus();
        helper.home().writeSuiteValue(u"CurrentVideoSign"_s, u"g"_s);

        QTRY_COMPARE(desktop.leftColour(), u"lime"_s);
    }

    void withoutADisplay_oneSentenceSaysSo()
    {
        HelperProcess helper(m_desktop);
        QProcess process;
        auto environment = m_desktop.environment();
        environment.insert(u"DISPLAY"_s, u":987"_s);
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
