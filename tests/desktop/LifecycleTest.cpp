#include "desktop/HelperProcess.h"

#include <QDBusConnection>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

class LifecycleTest : public QObject {
    Q_OBJECT

public Q_SLOTS:
    /// What is posted on the session bus.
    void hear(const QString& name, const QString& object, const QVariantMap& information)
    {
        m_heard << name + object + QString::number(information.size());
    }

private Q_SLOTS:
    void init()
    {
        m_helper = std::make_unique<HelperProcess>(*m_desktop);
        m_helper->addVideo(u"r"_s, u"red"_s);
    }
    void cleanup() { m_helper.reset(); }

    void endOfTheProcess_isAnnounced_data()
    {
        QTest::addColumn<int>("signal");
        QTest::addColumn<QString>("open");
        QTest::newRow("terminated") << SIGTERM << u"true"_s;
        QTest::newRow("interrupted") << SIGINT << u"true"_s;
        QTest::newRow("hung up") << SIGHUP << u"true"_s;
        QTest::newRow("closed and terminated") << SIGTERM << u"false"_s;
    }

    void endOfTheProcess_isAnnounced()
    {
        QFETCH(int, signal);
        QFETCH(QString, open);
        m_helper->home().writeSuiteValue(u"IsOpenPlayer"_s, open);
        auto bus = QDBusConnection::connectToBus(m_desktop->busAddress(), u"listener"_s);
        const auto interface = u"com.zemra.tavelor.DistributedNotification"_s;
        const auto* const slot = SLOT(hear(QString, QString, QVariantMap));
        bus.connect(QString(), u"/com/zemra/tavelor"_s, interface, u"Posted"_s, this, slot);
        m_heard.clear();
        m_helper->start();
        QTRY_VERIFY(!m_helper->lines().isEmpty());

        kill(static_cast<pid_t>(m_helper->process().processId()), signal);

        waitForProperEnd();
        QTRY_COMPARE(m_heard, QStringList{u"com.zemra.fendix.mac.ter0"_s});
        QDBusConnection::disconnectFromBus(u"listener"_s);
    }

    void silentNameServer_doesNotHoldUpTheEnd()
    {
        m_helper->setEnvironment(u"TAVELOR_SERVICE_URL"_s, u"https://service.example"_s);
        m_helper->setEnvironment(u"LD_PRELOAD"_s, QString::fromUtf8(SLOW_RESOLVER));
        m_helper->setEnvironment(u"ASAN_OPTIONS"_s, u"verify_asan_link_order=0"_s);
        m_helper->start();
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);

        m_helper->process().terminate();
        waitForProperEnd();
    }

    void secondInstance_saysSoAndEnds()
    {
        m_helper->start();
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);

        QProcess second;
        second.setProcessEnvironment(m_helper->process().processEnvironment());
        second.start(m_helper->process().program(), {});

        QVERIFY(second.waitForFinished());
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(
            second.readAllStandardError(), "TavelorHelper is already running in this session.\n");
        QCOMPARE(m_desktop->leftColour(), u"red"_s);
    }

    void withoutADisplay_oneSentenceSaysSo()
    {
        m_helper->setEnvironment(u"DISPLAY"_s, u":987"_s);
        m_helper->setEnvironment(u"WAYLAND_DISPLAY"_s, u"/nowhere"_s);
        m_helper->start();

        QVERIFY(m_helper->waitForEnd());
        QCOMPARE(m_helper->process().exitCode(), 1);
        QCOMPARE(m_helper->process().readAllStandardError().count('\n'), 1);
    }

    void unopenablePreferences_endTheProcess()
    {
        TemporaryHome::writeFile(m_helper->home().container() + u"/Preferences"_s, "a file");
        m_helper->start();

        QVERIFY(m_helper->waitForEnd());
        QVERIFY(m_helper->process().exitStatus() == QProcess::CrashExit);
        QVERIFY(m_helper->process().readAllStandardError().contains("cannot be opened"));
    }

    /// The last test, because the bus does not come back.
    void withoutASessionBus_theWallpaperPlays()
    {
        m_helper->addVideo(u"g"_s, u"lime"_s);
        for (const auto* bus : {"goes", "is not there"}) {
            m_helper->home().writeSuiteValue(u"CurrentVideoSign"_s, u"r"_s);
            m_helper->start();
            QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);

            m_desktop->stopBus();
            m_helper->home().writeSuiteValue(u"CurrentVideoSign"_s, u"g"_s);
            QTRY_VERIFY2(m_desktop->leftColour() == u"lime", bus);

            m_helper->process().terminate();
            waitForProperEnd();
        }
    }

private:
    void waitForProperEnd()
    {
        QVERIFY(m_helper->waitForEnd());
        QCOMPARE(m_helper->process().exitStatus(), QProcess::NormalExit);
        QCOMPARE(m_helper->process().exitCode(), 0);
    }

    std::unique_ptr<VirtualDesktop> m_desktop = VirtualDesktop::create();
    std::unique_ptr<HelperProcess> m_helper;
    QStringList m_heard;
};

QTEST_GUILESS_MAIN(LifecycleTest)
#include "LifecycleTest.moc"
