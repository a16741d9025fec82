#include "platform/Application.h"
#include "desktop/X11Desktop.h"
#include "platform/DesktopWindow.h"
#include "platform/Workspace.h"

#include <QSignalSpy>
#include <QTest>
#include <QWidget>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;
using WindowKind = X11Desktop::WindowKind;

/// What the application tells on a desktop with two monitors and a window manager.
class ApplicationTest : public QObject {
    Q_OBJECT

public:
    ApplicationTest(X11Desktop& desktop, Application& application)
        : m_desktop(desktop), m_application(application)
    {
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_desktop.setMonitors(X11Desktop::Monitors::TwoHalves);
        QTRY_COMPARE(Screen::screens().size(), 2U);
        m_desktop.startWindowManager();
    }

    void init()
    {
        showWallpaper();
        m_changes =
            std::make_unique<QSignalSpy>(&m_application, &Application::didChangeOcclusionState);
    }

    void cleanup()
    {
        for (const auto window : std::exchange(m_foreign, {}))
            m_desktop.closeWindow(window);
        QTRY_VERIFY(m_changes->count() % 2 == 0); // to be seen, as the next test expects
        m_changes.reset();
        m_wallpaper.clear();
    }

    /// From covered to visible by each way in which a window may cease to cover, and back.
    void windowThatDoesNotCover_letsTheWallpaperBeSeen_data()
    {
        using Act = std::function<void(ApplicationTest&, xcb_window_t)>;
        QTest::addColumn<Act>("act");
        const auto row = [](const char* name, const Act& act) { QTest::newRow(name) << act; };
        const auto replaceBy = [](WindowKind kind) {
            return [kind](ApplicationTest& test, xcb_window_t window) {
                test.open(kind, leftHalf);
                test.m_desktop.closeWindow(window);
            };
        };
        row("closed", [](auto& test, auto window) { test.m_desktop.closeWindow(window); });
        row("moved aside", [](auto& test, auto window) {
            test.m_desktop.moveWindow(window, {9, 0});
        });
        row("iconified", [](auto& test, auto window) { test.m_desktop.iconify(window); });
        row("on another space",
            [](auto& test, auto window) { test.m_desktop.sendToDesktop(window, 2); });
        row("with an opacity of its pixels", replaceBy(WindowKind::WithAlpha));
        row("with an opacity as a whole", replaceBy(WindowKind::Faded));
        row("shaped", replaceBy(WindowKind::Shaped));
        row("desktop icons", replaceBy(WindowKind::Desktop));
        row("another space shown", [](auto& test, auto) { test.m_desktop.requestDesktop(1); });
    }

    void windowThatDoesNotCover_letsTheWallpaperBeSeen()
    {
        QFETCH(std::function<void(ApplicationTest&, xcb_window_t)>, act);
        const auto left = open(WindowKind::Ordinary, leftHalf);
        open(WindowKind::Ordinary, rightHalf);
        QTRY_COMPARE(m_changes->count(), 1);

        act(*this, left);
        QTRY_COMPARE(m_changes->count(), 2);

        m_desktop.requestDesktop(0);
        open(WindowKind::Ordinary, leftHalf);
        QTRY_COMPARE(m_changes->count(), 3);
    }

    void windowThatSaysWhatIsOpaque_covers()
    {
        // The window manager's frame around it does not say so: it is put outside the screen.
        open(WindowKind::WithOpaqueRegion, everything.adjusted(-50, -50, 50, 50));
        QTRY_COMPARE(m_changes->count(), 1);
    }

    void windowsThatComeAndGoAtOnce_disturbNothing()
    {
        for (int i = 0; i < 50; ++i) {
            m_desktop.closeWindow(open(WindowKind::Ordinary, everything));
            QCoreApplication::processEvents();
        }
        open(WindowKind::Ordinary, everything);
        QTRY_COMPARE(m_changes->count(), 1);
    }

    void hiddenWallpaper_changesNothing()
    {
        const auto cover = open(WindowKind::Ordinary, everything);
        QTRY_COMPARE(m_changes->count(), 1);

        m_wallpaper.clear();
        m_desktop.closeWindow(cover);
        QTRY_COMPARE(m_desktop.leftColour(), u"bare"_s);
        QVERIFY(!m_changes->wait(1000)); // longer than a change may take

        // What is shown anew begins as seen, so this is a change again.
        showWallpaper();
        open(WindowKind::Ordinary, everything);
        QTRY_COMPARE(m_changes->count(), 2);
        m_desktop.closeWindow(std::exchange(m_foreign, {}).back());
        QTRY_COMPARE(m_changes->count(), 3);
        m_changes->clear();
    }

    void windowManager_mayBeKilledAndComeBack()
    {
        open(WindowKind::Ordinary, everything);
        QTRY_COMPARE(m_changes->count(), 1);

        m_desktop.killWindowManager();
        QTRY_COMPARE(m_changes->count(), 2); // where the title bar was
        const auto cover = open(WindowKind::Ordinary, everything);
        QTRY_COMPARE(m_changes->count(), 3);

        m_desktop.startWindowManager();
        m_desktop.moveWindow(cover, {600, 600});
        open(WindowKind::Ordinary, everything);
        QTRY_VERIFY(m_changes->count() % 2 == 1);
    }

    void spaceThatIsShown_isTold()
    {
        const QSignalSpy spaces(&Workspace::shared(), &Workspace::activeSpaceDidChange);
        m_desktop.requestDesktop(1);
        QTRY_COMPARE(spaces.count(), 1);
        m_desktop.requestDesktop(0);
        QTRY_COMPARE(spaces.count(), 2);
    }

    void keyboardThatGoesToAnotherProgram_isTold()
    {
        const QSignalSpy resignations(&m_application, &Application::didResignActive);
        QWidget window;
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QCOMPARE(resignations.count(), 0);

        open(WindowKind::Ordinary, {100, 100, 300, 300});

        QTRY_COMPARE(resignations.count(), 1);
    }

private:
    static constexpr QRect leftHalf{0, 0, 640, 720};
    static constexpr QRect rightHalf{640, 0, 640, 720};
    static constexpr QRect everything{0, 0, 1280, 720};

    xcb_window_t open(WindowKind kind, const QRect& frame)
    {
        m_foreign.push_back(m_desktop.openWindow(kind, Qt::blue, frame));
        return m_foreign.back();
    }

    void showWallpaper()
    {
        for (const auto& screen : Screen::screens()) {
            m_wallpaper.push_back(
                std::make_unique<DesktopWindow>(QRect(QPoint(), screen.frame.size()),
                    WindowStyle::Borderless,
                    WindowBacking::Buffered,
                    DesktopWindow::Defer::No,
                    screen));
            m_wallpaper.back()->setCollectionBehavior(WindowCollectionBehavior::CanJoinAllSpaces);
            m_wallpaper.back()->orderBack();
        }
    }

    X11Desktop& m_desktop;
    Application& m_application;
    std::vector<std::unique_ptr<DesktopWindow>> m_wallpaper;
    std::vector<xcb_window_t> m_foreign; // of another program
    std::unique_ptr<QSignalSpy> m_changes;
};

int main(int argc, char** argv)
{
    static X11Desktop desktop; // static, to go after what uses it
    qputenv("DISPLAY", desktop.display().toUtf8());
    qputenv("DBUS_SESSION_BUS_ADDRESS", desktop.busAddress().toUtf8());
    qputenv("QT_QPA_PLATFORM", "xcb"); // the keyboard is X11's
    static Application application(argc, argv);
    QObject::connect(&application, &Application::didFinishLaunching, &application, [argc, argv] {
        ApplicationTest test(desktop, application);
        QCoreApplication::exit(QTest::qExec(&test, argc, argv));
    });
    application.run(); // ends the process, with the status of the loop, and the desktop with it
}
#include "ApplicationTest.moc"
