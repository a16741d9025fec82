#include "desktop/HelperProcess.h"
#include "desktop/VirtualDesktop.h"

#include <QTest>

/// Where the wallpaper stands among other windows, under a window manager, without one, and when
/// one comes or goes.
class StackingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wallpaper_liesBelowEverything_data()
    {
        QTest::addColumn<bool>("isManaged");
        QTest::newRow("with a window manager") << true;
        QTest::newRow("without one") << false;
    }

    void wallpaper_liesBelowEverything()
    {
        QFETCH(bool, isManaged);
        VirtualDesktop desktop;
        if (isManaged)
            desktop.startWindowManager();
        HelperProcess helper(desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"));
        const auto icons = desktop.openWindow(VirtualDesktop::WindowKind::Desktop, Qt::green);
        QTRY_COMPARE(desktop.leftColour(), QStringLiteral("lime"));

        helper.start();
        QTRY_COMPARE(desktop.rightColour(), QStringLiteral("red"));
        QCOMPARE(desktop.leftColour(), QStringLiteral("lime")); // the desktop's icons, in front
        const auto window = desktop.openWindow(VirtualDesktop::WindowKind::Ordinary, Qt::blue);
        QTRY_COMPARE(desktop.leftColour(), QStringLiteral("blue"));

        // Every change puts the wallpaper in its place again, which is the same one.
        helper.home().writeSuiteValue(QStringLiteral("MonitorArrange"), QStringLiteral("1"));
        QTest::qWait(1500);
        QCOMPARE(desktop.leftColour(), QStringLiteral("blue"));
        desktop.closeWindow(window);
        QTRY_COMPARE(desktop.leftColour(), QStringLiteral("lime"));
        desktop.closeWindow(icons);
        QTRY_COMPARE(desktop.leftColour(), QStringLiteral("red"));
    }

    void serverWithoutAnExtension_showsThePictureAllTheSame_data()
    {
        QTest::addColumn<QString>("extension");
        QTest::newRow("no shared memory: pictures are sent") << "MIT-SHM";
        QTest::newRow("no touches") << "XInputExtension";
        QTest::newRow("no monitors") << "RANDR";
    }

    void serverWithoutAnExtension_showsThePictureAllTheSame()
    {
        QFETCH(QString, extension);
        VirtualDesktop desktop({1280, 720}, {QStringLiteral("-extension"), extension});
        HelperProcess helper(desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"));
        helper.start();
        QTRY_COMPARE(desktop.leftColour(), QStringLiteral("red"));
        QTRY_COMPARE(desktop.colour({1279, 719}), QStringLiteral("red")); // to the last strip
        if (extension == u"RANDR")
            helper.process().readAllStandardError(); // Qt says that it misses it
    }

    void secondaryButton_opensTheWindowManagersMenu()
    {
        VirtualDesktop desktop;
        desktop.startWindowManager();
        HelperProcess helper(desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"));
        helper.start();
        QTRY_COMPARE(desktop.leftColour(), QStringLiteral("red"));

        desktop.moveAndClick({600, 300}, 3);

        QTRY_VERIFY(desktop.colour({620, 330}) != u"red");
        QVERIFY(!helper.lines().contains(u"mouse down"));
    }

    void requestToClose_isIgnored()
    {
        VirtualDesktop desktop;
        desktop.startWindowManager();
        HelperProcess helper(desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"));
        helper.start();
        QTRY_COMPARE(desktop.leftColour(), QStringLiteral("red"));

        desktop.requestClose();
        QTest::qWait(500);

        QCOMPARE(desktop.leftColour(), QStringLiteral("red"));
        QCOMPARE(helper.process().state(), QProcess::Running);
    }

    void whenTheServerGoes_theHelperEnds()
    {
        auto desktop = std::make_unique<VirtualDesktop>();
        HelperProcess helper(*desktop);
        // Qt ends the process on the spot, which a leak check would take for a leak of everything.
        helper.ignoreLeaks();
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"));
        helper.start();
        QTRY_COMPARE(desktop->leftColour(), QStringLiteral("red"));

        desktop.reset();

        QVERIFY(helper.waitForEnd());
        QCOMPARE(helper.process().exitStatus(), QProcess::NormalExit);
        helper.process().readAllStandardError(); // says why
    }

    void windowManager_mayComeGoAndComeBack()
    {
        VirtualDesktop desktop;
        HelperProcess helper(desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"));
        helper.start();
        QTRY_COMPARE(desktop.rightColour(), QStringLiteral("red"));

        for (int i = 0; i < 2; ++i) {
            desktop.startWindowManager();
            // Managed now: it stays when another space is shown, and below what it manages.
            const auto window = desktop.openWindow(VirtualDesktop::WindowKind::Ordinary, Qt::blue);
            QTRY_COMPARE(desktop.leftColour(), QStringLiteral("blue"));
            QTRY_COMPARE(desktop.rightColour(), QStringLiteral("red"));
            desktop.requestDesktop(1);
            QTRY_COMPARE(desktop.leftColour(), QStringLiteral("red"));
            desktop.requestDesktop(0);
            QTRY_COMPARE(desktop.leftColour(), QStringLiteral("blue"));
            desktop.closeWindow(window);

            desktop.killWindowManager();
            QTRY_COMPARE(desktop.leftColour(), QStringLiteral("red"));
            QTRY_COMPARE(desktop.rightColour(), QStringLiteral("red"));
        }
    }
};

QTEST_GUILESS_MAIN(StackingTest)
#include "StackingTest.moc"
