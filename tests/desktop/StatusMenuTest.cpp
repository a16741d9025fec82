#include "desktop/HelperProcess.h"
#include "desktop/StatusNotifierHost.h"
#include "desktop/X11Desktop.h"
#include "service/OpenSsl.h"
#include "service/StandInService.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

/// The menu as a panel sees it, over the bus, and what a click does.
class StatusMenuTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_desktop = std::make_unique<X11Desktop>();
        m_desktop->startWindowManager();
        m_host = std::make_unique<StatusNotifierHost>(m_desktop->busAddress());
        m_helper = std::make_unique<HelperProcess>(*m_desktop);
        m_helper->addVideo(u"r"_s, u"red"_s);
    }

    void cleanup()
    {
        m_helper.reset();
        m_host.reset();
        m_desktop.reset();
    }

    void item_isExportedWithItsMenu()
    {
        start();

        QCOMPARE(m_host->itemProperty(u"Title"_s), u"TavelorHelper"_s);
        QCOMPARE(m_host->itemProperty(u"IconName"_s), QString()); // which no theme has here
        QVERIFY(!m_host->itemProperty(u"IconPixmap"_s).isNull());
        QCOMPARE(m_host->entry({}).children.size(), 10);
        QCOMPARE(m_host->entry(u"1.0.0"_s)["enabled"], false);
        QCOMPARE(qdbus_cast<QList<QStringList>>(m_host->entry(u"Quit"_s)["shortcut"]),
            QList<QStringList>({{u"Control"_s, u"Q"_s}}));
        QCOMPARE(m_host->entry(u"Mute"_s)["toggle-type"], u"checkmark"_s);

        m_desktop->setMonitors(X11Desktop::Monitors::TwoHalves);
        QTRY_COMPARE(m_host->entry(u"Screen/Single"_s).children.size(), 2);
        QCOMPARE(m_host->entry(u"Screen/Mirror"_s)["toggle-type"], u"radio"_s);
        QCOMPARE(m_host->entry(u"Screen/Single/2"_s)["toggle-type"], u"radio"_s);

        const auto older = m_host->entry(u"Screen/Single/2"_s).id;
        m_desktop->setMonitors(X11Desktop::Monitors::One);
        QTRY_COMPARE(m_host->entry({}).children.size(), 10);
        m_host->click(older); // which does nothing any more
        m_host->click(u"Mute"_s);
        QTRY_COMPARE(suite("Mute"), u"true"_s);
        QCOMPARE(suite("MonitorArrange"), QString());
    }

    void clicks_reachPlayerAndSettings()
    {
        m_desktop->setMonitors(X11Desktop::Monitors::TwoHalves);
        start();
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);

        m_host->click(u"Screen/Single/2"_s);
        QTRY_COMPARE(suite("ScreenIndex"), u"1"_s);
        QTRY_VERIFY(m_desktop->leftColour() != u"red");
        QTRY_COMPARE(m_desktop->rightColour(), u"red"_s);
        QTRY_COMPARE(m_host->entry(u"Screen/Single/2"_s)["toggle-state"], 1);

        m_host->click(u"Close Video Wallpaper"_s);
        QTRY_VERIFY(m_desktop->rightColour() != u"red");
        QTRY_COMPARE(suite("IsOpenPlayer"), u"false"_s);
        m_helper->home().writeSuiteValue(u"IsOpenPlayer"_s, u"true"_s);
        QTRY_COMPARE(m_desktop->rightColour(), u"red"_s);
        QTRY_VERIFY(m_host->hasEntry(u"Close Video Wallpaper"_s));
    }

    void newerVersion_isOfferedOnTheDesktopInUse()
    {
        const QTemporaryDir certificates;
        OpenSsl::makeCertificate(certificates.path());
        StandInService service(certificates.path());
        service.setOffer("{\"url\":\"https://example.com/\",\"ver\":\"9.0\"}");
        m_helper->setEnvironment(u"TAVELOR_SERVICE_URL"_s, service.origin());
        m_helper->setEnvironment(u"SSL_CERT_FILE"_s, certificates.path() + u"/certificate.pem"_s);
        const QStringList offered{u"TavelorHelper"_s, u"New Version Available — TavelorHelper"_s};
        start();
        QTRY_COMPARE(m_desktop->windowTitles(), offered);

        m_host->click(u"Check for Updates..."_s);
        QTRY_COMPARE(service.requests(24).size(), std::size_t{2});
        service.setOffer({});
        m_host->click(u"Check for Updates..."_s);
        // The second offer has taken the place of the first by then.
        QTRY_COMPARE(m_desktop->windowTitles(), offered + QStringList{u"TavelorHelper"_s});

        const auto middle = [this] { return m_desktop->colour({640, 360}); };
        QTRY_VERIFY(middle() != u"red");
        m_desktop->requestDesktop(1);
        QTRY_COMPARE(middle(), u"red"_s);
        m_host->click(u"Check for Updates..."_s);
        QTRY_VERIFY(middle() != u"red");
    }

    void statusBarThatComesLateOrAgain_getsTheItem()
    {
        m_host.reset();
        m_helper->start();
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);

        for (int i = 0; i < 2; ++i) {
            m_host = std::make_unique<StatusNotifierHost>(m_desktop->busAddress());
            QTRY_VERIFY(m_host->hasEntry(u"Quit"_s));
            m_host->click(u"Mute"_s);
            m_host.reset(); // in mid click
        }
        m_host = std::make_unique<StatusNotifierHost>(m_desktop->busAddress());
        QTRY_VERIFY(m_host->hasEntry(u"Quit"_s));
        m_host->click(u"Quit"_s);

        QVERIFY(m_helper->waitForEnd());
        QCOMPARE(m_helper->process().exitCode(), 0);
    }

private:
    void start()
    {
        m_helper->start();
        QTRY_VERIFY(m_host->hasEntry(u"Quit"_s));
    }
    QString suite(const char* key) const
    {
        return m_helper->home().suiteValue(QString::fromLatin1(key));
    }

    std::unique_ptr<X11Desktop> m_desktop;
    std::unique_ptr<StatusNotifierHost> m_host;
    std::unique_ptr<HelperProcess> m_helper;
};

QTEST_GUILESS_MAIN(StatusMenuTest)
#include "StatusMenuTest.moc"
