#include "desktop/HelperProcess.h"
#include "desktop/StatusNotifierHost.h"
#include "desktop/VirtualDesktop.h"
#include "service/OpenSsl.h"
#include "service/StandInService.h"

#include <QTemporaryDir>
#include <QTest>

namespace {

QStringList path(std::initializer_list<const char*> titles)
{
    QStringList path;
    for (const auto* title : titles)
        path << QString::fromUtf8(title);
    return path;
}

const auto suiteOpen = QStringLiteral("IsOpenPlayer");
const auto suitePlaying = QStringLiteral("isPlaying");

} // namespace

/// The menu as a panel sees it, over the bus, and what a click does.
class StatusMenuTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_desktop = std::make_unique<VirtualDesktop>();
        m_desktop->startWindowManager();
        m_host = std::make_unique<StatusNotifierHost>(m_desktop->busAddress());
        m_helper = std::make_unique<HelperProcess>(*m_desktop);
        m_helper->addVideo(QStringLiteral("r"), QStringLiteral("red"));
    }

    void cleanup()
    {
        m_helper.reset();
        m_host.reset();
        m_desktop.reset();
    }

    void menu_hasItsItemsInOrder()
    {
        start();

        QCOMPARE(m_host->titles(),
            path({"Main Window",
                "1.0.0",
                "Check for Updates...",
                "-",
                "Close Video Wallpaper",
                "Pause",
                "Hide Desktop Icon",
                "Mute",
                "-",
                "-",
                "Quit"}));
        QVERIFY(!m_host->entry(path({"1.0.0"}))->enabled);
        QCOMPARE(m_host->entry(path({"Quit"}))->shortcut, QStringLiteral("Control+Q"));
        QVERIFY(!m_host->entry(path({"Mute"}))->marked);
        QVERIFY(!m_host->itemProperty(QStringLiteral("IconPixmap")).isNull());
    }

    void secondMonitor_addsTheScreens()
    {
        start();
        m_desktop->setMonitors(VirtualDesktop::Monitors::TwoHalves);

        QTRY_VERIFY(m_host->entry(path({"Screen"})));
        QCOMPARE(m_host->titles(path({"Screen"})), path({"Integration", "Mirror", "Single"}));
        QCOMPARE(m_host->titles(path({"Screen", "Single"})), path({"1", "2"}));

        m_desktop->setMonitors(VirtualDesktop::Monitors::One);
        QTRY_VERIFY(!m_host->entry(path({"Screen"})));
        QCOMPARE(m_host->titles().size(), 11);
    }

    void oneOfTheMonitors_isChosenUnderSingle()
    {
        m_desktop->setMonitors(VirtualDesktop::Monitors::TwoHalves);
        start();
        QTRY_COMPARE(m_desktop->leftColour(), QStringLiteral("red"));
        QVERIFY(m_host->entry(path({"Screen", "Integration"}))->marked);

        m_host->click(path({"Screen", "Single", "2"}));

        QTRY_COMPARE(suite("ScreenIndex"), QStringLiteral("1"));
        QCOMPARE(suite("MonitorArrange"), QStringLiteral("2"));
        QTRY_VERIFY(m_desktop->leftColour() != u"red");
        QTRY_COMPARE(m_desktop->rightColour(), QStringLiteral("red"));
        QTRY_VERIFY(m_host->entry(path({"Screen", "Single"}))->marked);
        QVERIFY(!m_host->entry(path({"Screen", "Integration"}))->marked);
        QVERIFY(m_host->entry(path({"Screen", "Single", "2"}))->marked);
        QVERIFY(!m_host->entry(path({"Screen", "Single", "1"}))->marked);

        m_host->click(path({"Screen", "Mirror"}));

        QTRY_COMPARE(suite("MonitorArrange"), QStringLiteral("1"));
        QTRY_COMPARE(m_desktop->leftColour() + m_desktop->rightColour(), QStringLiteral("redred"));
        QTRY_VERIFY(m_host->entry(path({"Screen", "Mirror"}))->marked);
        QVERIFY(!m_host->entry(path({"Screen", "Single"}))->marked);
    }

    void wallpaper_isClosedAndOpened()
    {
        start();
        QTRY_COMPARE(m_desktop->leftColour(), QStringLiteral("red"));

        m_host->click(path({"Close Video Wallpaper"}));

        QTRY_VERIFY(m_host->entry(path({"Open Video Wallpaper"})));
        QVERIFY(!m_host->entry(path({"Pause"}))->enabled);
        QVERIFY(!m_host->entry(path({"Hide Desktop Icon"}))->enabled);
        QTRY_VERIFY(m_desktop->leftColour() != u"red");
        QCOMPARE(suite("IsOpenPlayer"), QStringLiteral("false"));

        m_host->click(path({"Open Video Wallpaper"}));

        QTRY_COMPARE(m_desktop->leftColour(), QStringLiteral("red"));
        QTRY_VERIFY(m_host->entry(path({"Close Video Wallpaper"})));
        QVERIFY(m_host->entry(path({"Pause"}))->enabled);
        QVERIFY(m_host->entry(path({"Hide Desktop Icon"}))->enabled);
    }

    void settings_areFollowedFromOutside()
    {
        start();

        m_helper->home().writeSuiteValue(suitePlaying, QStringLiteral("false"));
        QTRY_VERIFY(m_host->entry(path({"Play"})));
        m_helper->home().writeSuiteValue(QStringLiteral("Mute"), QStringLiteral("true"));
        QTRY_VERIFY(m_host->entry(path({"Mute"}))->marked);
        m_helper->home().writeSuiteValue(suiteOpen, QStringLiteral("false"));
        QTRY_VERIFY(m_host->entry(path({"Open Video Wallpaper"})));
    }

    void playing_isPausedAndMuted()
    {
        start();

        m_host->click(path({"Pause"}));
        QTRY_VERIFY(m_host->entry(path({"Play"})));
        QTRY_COMPARE(suite("isPlaying"), QStringLiteral("false"));
        m_host->click(path({"Play"}));
        QTRY_VERIFY(m_host->entry(path({"Pause"})));
        QTRY_COMPARE(suite("isPlaying"), QStringLiteral("true"));

        m_host->click(path({"Mute"}));
        QTRY_VERIFY(m_host->entry(path({"Mute"}))->marked);
        QTRY_COMPARE(suite("Mute"), QStringLiteral("true"));
        m_host->click(path({"Mute"}));
        QTRY_VERIFY(!m_host->entry(path({"Mute"}))->marked);
        QTRY_COMPARE(suite("Mute"), QStringLiteral("false"));
    }

    void desktopIcons_areHiddenAndShown()
    {
        start();
        QTRY_COMPARE(m_desktop->leftColour(), QStringLiteral("red"));
        const auto icons = m_desktop->openWindow(
            VirtualDesktop::WindowKind::Desktop, Qt::blue, QRect(0, 0, 640, 360));
        QTRY_COMPARE(m_desktop->leftColour(), QStringLiteral("blue"));

        m_host->click(path({"Hide Desktop Icon"}));
        QTRY_COMPARE(m_desktop->leftColour(), QStringLiteral("red"));
        QTRY_VERIFY(m_host->entry(path({"Hide Desktop Icon"}))->marked);

        m_host->click(path({"Hide Desktop Icon"}));
        QTRY_COMPARE(m_desktop->leftColour(), QStringLiteral("blue"));
        QTRY_VERIFY(!m_host->entry(path({"Hide Desktop Icon"}))->marked);
        m_desktop->closeWindow(icons);
    }

    void newerVersion_isOfferedAtTheStartAndOnRequest()
    {
        const QTemporaryDir certificates;
        OpenSsl::makeCertificate(certificates.path());
        StandInService service(certificates.path());
        service.setOffer("{\"url\":\"https://example.com/\",\"ver\":\"9.0\"}");
        m_helper->setEnvironment(QStringLiteral("TAVELOR_SERVICE_URL"), service.origin());
        m_helper->setEnvironment(QStringLiteral("SSL_CERT_FILE"),
            certificates.path() + QStringLiteral("/certificate.pem"));
        const QStringList offered{QStringLiteral("New Version Available")};
        start();
        QTRY_COMPARE(m_desktop->windowTitles(), offered);

        m_host->click(path({"Check for Updates..."}));
        QTRY_COMPARE(service.requests(24).size(), std::size_t{2});
        service.setOffer({});
        m_host->click(path({"Check for Updates..."}));

        // The second offer has taken the place of the first by then.
        QTRY_COMPARE(
            m_desktop->windowTitles(), offered + QStringList{QStringLiteral("TavelorHelper")});
    }

    void quit_endsTheProcess()
    {
        start();

        m_host->click(path({"Quit"}));

        QVERIFY(m_helper->waitForEnd());
        QCOMPARE(m_helper->process().exitCode(), 0);
    }

    void statusBarThatComesLateOrAgain_getsTheItem()
    {
        m_host.reset();
        m_helper->start();
        QTRY_COMPARE(m_desktop->leftColour(), QStringLiteral("red"));

        for (int i = 0; i < 3; ++i) {
            m_host = std::make_unique<StatusNotifierHost>(m_desktop->busAddress());
            QTRY_VERIFY(m_host->hasItem());
            QTRY_VERIFY(m_host->entry(path({"Quit"})));
            m_host.reset();
        }
        m_host = std::make_unique<StatusNotifierHost>(m_desktop->busAddress());
        QTRY_VERIFY(m_host->hasItem());
        m_host->click(path({"Close Video Wallpaper"}));
        QTRY_COMPARE(suite("IsOpenPlayer"), QStringLiteral("false"));
    }

    void statusBarThatGoesInMidClick_harmsNothing()
    {
        start();
        QTRY_COMPARE(m_desktop->leftColour(), QStringLiteral("red"));
        m_host->click(path({"Close Video Wallpaper"}));
        m_host.reset();

        QTRY_COMPARE(suite("IsOpenPlayer"), QStringLiteral("false"));
    }

    void itemsOfAnOlderMenu_doNothing()
    {
        m_desktop->setMonitors(VirtualDesktop::Monitors::TwoHalves);
        start();
        const auto older = m_host->entry(path({"Screen", "Single", "2"}))->id;
        m_desktop->setMonitors(VirtualDesktop::Monitors::One);
        QTRY_VERIFY(!m_host->entry(path({"Screen"})));

        m_host->click(older);
        m_host->click(12345);

        m_host->click(path({"Mute"}));
        QTRY_COMPARE(suite("Mute"), QStringLiteral("true"));
        QCOMPARE(suite("MonitorArrange"), QString());
    }

private:
    void start()
    {
        m_helper->start();
        QTRY_VERIFY(m_host->hasItem());
        QTRY_VERIFY(m_host->entry(path({"Quit"})));
    }
    QString suite(const char* key) const
    {
        return m_helper->home().suiteValue(QString::fromLatin1(key));
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<StatusNotifierHost> m_host;
    std::unique_ptr<HelperProcess> m_helper;
};

QTEST_GUILESS_MAIN(StatusMenuTest)
#include "StatusMenuTest.moc"
