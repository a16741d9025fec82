#include "desktop/HelperProcess.h"
#include "desktop/X11Desktop.h"

#include <QTest>

using namespace Qt::StringLiterals;
using WindowKind = X11Desktop::WindowKind;

/// Where the wallpaper stands among other windows, under a window manager, without one, and when
/// one comes or goes.
class StackingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        m_helper.reset();
        m_desktop.reset();
    }

    void wallpaper_liesBelowEverything_data()
    {
        QTest::addColumn<bool>("isManaged");
        QTest::newRow("with a window manager") << true;
        QTest::newRow("without one") << false;
    }

    void wallpaper_liesBelowEverything()
    {
        QFETCH(bool, isManaged);
        makeDesktop(isManaged);
        const auto icons = m_desktop->openWindow(WindowKind::Desktop, Qt::green);
        QTRY_COMPARE(m_desktop->leftColour(), u"lime"_s);

        start();
        QCOMPARE(m_desktop->leftColour(), u"lime"_s); // the desktop's icons, in front
        const auto window = m_desktop->openWindow(WindowKind::Ordinary, Qt::blue);
        QTRY_COMPARE(m_desktop->leftColour(), u"blue"_s);

        // Every change puts the wallpaper in its place again, which is the same one.
        m_helper->home().writeSuiteValue(u"MonitorArrange"_s, u"1"_s);
        QTest::qWait(1500);
        QCOMPARE(m_desktop->leftColour(), u"blue"_s);
        m_desktop->closeWindow(window);
        QTRY_COMPARE(m_desktop->leftColour(), u"lime"_s);
        m_desktop->closeWindow(icons);
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);
    }

    void serverWithoutAnExtension_showsThePictureAllTheSame()
    {
        // Pictures are sent, there are no touches, and no monitors.
        for (const auto& extension : {u"MIT-SHM"_s, u"XInputExtension"_s, u"RANDR"_s}) {
            cleanup();
            makeDesktop(false, {u"-extension"_s, extension});
            start();
            QTRY_COMPARE(m_desktop->colour({1279, 719}), u"red"_s); // to the last strip
        }
        m_helper->process().readAllStandardError(); // Qt says that it misses the monitors
    }

    void requestToClose_isIgnoredAndTheSecondaryButtonIsPassedOn()
    {
        makeDesktop(true);
        start();

        m_desktop->requestClose();
        QTest::qWait(500);
        QCOMPARE(m_desktop->leftColour(), u"red"_s);
        QCOMPARE(m_helper->process().state(), QProcess::Running);

        m_desktop->click({600, 300}, 3);
        QTRY_VERIFY(m_desktop->colour({620, 330}) != u"red"); // the window manager's menu
        QVERIFY(!m_helper->lines().contains(u"mouse down"));
    }

    void whenTheServerGoes_theHelperEnds()
    {
        makeDesktop(false);
        // Qt ends the process on the spot, which a leak check would take for a leak of everything.
        m_helper->setEnvironment(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s);
        start();

        m_desktop.reset();

        QVERIFY(m_helper->waitForEnd());
        QCOMPARE(m_helper->process().exitStatus(), QProcess::NormalExit);
        m_helper->process().readAllStandardError(); // says why
    }

    void windowManager_mayComeGoAndComeBack()
    {
        makeDesktop(false);
        start();
        for (int i = 0; i < 2; ++i) {
            m_desktop->startWindowManager();
            // Managed now: it stays when another space is shown, and below what it manages.
            const auto window = m_desktop->openWindow(WindowKind::Ordinary, Qt::blue);
            QTRY_COMPARE(colours(), u"blue red"_s);
            m_desktop->requestDesktop(1);
            QTRY_COMPARE(colours(), u"red red"_s);
            m_desktop->requestDesktop(0);
            QTRY_COMPARE(colours(), u"blue red"_s);
            m_desktop->closeWindow(window);

            m_desktop->killWindowManager();
            QTRY_COMPARE(colours(), u"red red"_s);
        }
    }

private:
    void makeDesktop(bool isManaged, const QStringList& serverArguments = {})
    {
        m_desktop = std::make_unique<X11Desktop>(QSize(1280, 720), serverArguments);
        if (isManaged)
            m_desktop->startWindowManager();
        m_helper = std::make_unique<HelperProcess>(*m_desktop);
        m_helper->addVideo(u"r"_s, u"red"_s);
    }
    void start()
    {
        m_helper->start();
        QTRY_COMPARE(m_desktop->rightColour(), u"red"_s);
    }
    QString colours() const { return m_desktop->leftColour() + u' ' + m_desktop->rightColour(); }

    std::unique_ptr<X11Desktop> m_desktop;
    std::unique_ptr<HelperProcess> m_helper;
};

QTEST_GUILESS_MAIN(StackingTest)
#include "StackingTest.moc"
