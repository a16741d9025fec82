#include "desktop/DesktopProgram.h"
#include "desktop/HelperProcess.h"
#include "desktop/StatusNotifierHost.h"
#include "desktop/X11Desktop.h"

#include <QTest>

using namespace Qt::StringLiterals;

/// The wallpaper beside another program's desktop, which has a picture and icons of its own.
class ForeignDesktopTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        m_helper.reset();
        m_program.reset();
        m_host.reset();
        m_desktop.reset();
    }

    void opaqueDesktop_isBehindTheVideo_data()
    {
        QTest::addColumn<bool>("hasAlpha");
        QTest::addColumn<bool>("isComposited");
        QTest::addColumn<bool>("isFirst");
        QTest::addColumn<QString>("seen");
        QTest::newRow("there first") << false << false << true << u"red"_s;
        QTest::newRow("comes later") << false << false << false << u"red"_s;
        QTest::newRow("with an alpha channel that nobody blends")
            << true << false << true << u"red"_s;
        // Nobody really blends here: what is in front is seen.
        QTest::newRow("transparent, so it may stay in front") << true << true << true << u"lime"_s;
    }

    void opaqueDesktop_isBehindTheVideo()
    {
        QFETCH(bool, hasAlpha);
        QFETCH(bool, isComposited);
        QFETCH(bool, isFirst);
        QFETCH(QString, seen);
        makeDesktop();
        if (isComposited)
            m_desktop->pretendCompositing();
        const DesktopProgram::Look look{.hasAlpha = hasAlpha};
        if (isFirst)
            startProgram(look);
        start(seen);
        const auto window = m_desktop->openWindow(X11Desktop::WindowKind::Ordinary, Qt::blue);
        QTRY_COMPARE(m_desktop->leftColour(), u"blue"_s);
        if (!isFirst)
            startProgram(look);

        QTest::qWait(1000); // whatever is decided has been by then
        QTRY_COMPARE(m_desktop->rightColour(), seen);
        QCOMPARE(m_desktop->leftColour(), u"blue"_s);
        const auto wallpaper = m_desktop->windowNamed(u"TavelorHelper"_s);
        const auto states = m_desktop->property(wallpaper, "_NET_WM_STATE");
        QVERIFY(states.contains(bytes(m_desktop->atom("_NET_WM_STATE_SKIP_TASKBAR"))));
        QCOMPARE(states.contains(bytes(m_desktop->atom("_NET_WM_STATE_BELOW"))), seen == u"red");
        m_desktop->closeWindow(window);
        QTRY_COMPARE(m_desktop->leftColour(), seen);
    }

    void compositor_thatComesLetsTheDesktopInFront()
    {
        makeDesktop();
        startProgram({.hasAlpha = true});
        start();
        QTest::qWait(1000); // nothing else is looked at any more

        m_desktop->pretendCompositing();

        QTRY_COMPARE_WITH_TIMEOUT(m_desktop->rightColour(), u"lime"_s, 10'000);
    }

    void onOneMonitor_theOtherOneIsLeftAlone()
    {
        makeDesktop();
        m_desktop->setMonitors(X11Desktop::Monitors::TwoHalves);
        startProgram({.frame = {640, 0, 640, 720}});
        start();
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);

        // A small one of that type, as system monitors have, stays in front where it can.
        m_desktop->openWindow(X11Desktop::WindowKind::Desktop, Qt::blue);
        QTRY_COMPARE(m_desktop->leftColour(), u"blue"_s);
        QTest::qWait(1000);
        QCOMPARE(m_desktop->leftColour(), u"blue"_s);
        QCOMPARE(m_desktop->rightColour(), u"red"_s);
    }

    void restarts_makeNoFight()
    {
        makeDesktop();
        startProgram({});
        start();
        const auto window = m_desktop->windowNamed(u"TavelorHelper"_s);
        const std::uint32_t structure = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(
            m_desktop->connection(), window, XCB_CW_EVENT_MASK, &structure);

        for (int i = 0; i < 5; ++i) {
            m_program.reset();
            QTest::qWait(600);
            QCOMPARE(m_desktop->rightColour(), u"red"_s);
            startProgram({});
            QTest::qWait(400);
            QCOMPARE(m_desktop->rightColour(), u"red"_s);
        }
        QCOMPARE(unmapCount(), 0);

        // When it stays away the wallpaper is an ordinary desktop again.
        m_program.reset();
        const auto desktopType = m_desktop->atom("_NET_WM_WINDOW_TYPE_DESKTOP");
        QTRY_COMPARE_WITH_TIMEOUT(
            m_desktop->property(window, "_NET_WM_WINDOW_TYPE"), bytes(desktopType), 10'000);
        QTRY_COMPARE(m_desktop->rightColour(), u"red"_s);
    }

    void press_isHeardAndReachesTheDesktop()
    {
        makeDesktop();
        startProgram({});
        start();

        m_desktop->click({600, 300}, 3);
        m_desktop->click({600, 300});
        QTRY_COMPARE(m_program->buttons(), (std::vector{3, -3, 1, -1}));
        QTRY_COMPARE(m_helper->lines().count(u"mouse down"_s), 1);
        QTRY_COMPARE(m_helper->lines().count(u"tapVideoPlayerViewAction"_s), 1);

        m_desktop->openWindow(X11Desktop::WindowKind::Ordinary, Qt::blue);
        QTRY_COMPARE(m_desktop->leftColour(), u"blue"_s);
        m_desktop->click({200, 200}); // on that
        // The helper looks where the pointer is, which must not be elsewhere by then.
        for (int i = 0; i < 2; ++i)
            m_helper->status(u"state"_s);
        m_desktop->click({600, 300});
        QTRY_COMPARE(m_program->buttons().size(), 6U);
        QTRY_COMPARE(m_helper->lines().count(u"mouse down"_s), 2);

        m_desktop->swapButtons();
        m_desktop->click({600, 300}, 3);
        QTRY_COMPARE(m_helper->lines().count(u"mouse down"_s), 3);
    }

    void icons_areSeenThroughTheVideo_data()
    {
        QTest::addColumn<DesktopProgram::Look>("look");
        QTest::newRow("on one colour") << DesktopProgram::Look{};
        QTest::newRow("on a picture that the root window has, too")
            << DesktopProgram::Look{.right = Qt::cyan, .hasRootPixmap = true};
    }

    void icons_areSeenThroughTheVideo()
    {
        QFETCH(DesktopProgram::Look, look);
        makeDesktop();
        startProgram(look);
        m_program->drawIcon({180, 180, 40, 40}, Qt::magenta);
        start();
        QTRY_COMPARE(colours(), u"magenta red"_s);
        QCOMPARE(m_desktop->colour({179, 200}), u"red"_s); // to the pixel
        QCOMPARE(m_desktop->colour({180, 200}), u"magenta"_s);

        m_program->removeIcon({180, 180, 40, 40});
        m_program->drawIcon({1060, 180, 40, 40}, Qt::blue);
        QTRY_COMPARE(colours(), u"red blue"_s);

        m_host->click(u"Hide Desktop Icon"_s);
        QTRY_COMPARE(colours(), u"red red"_s);
        m_host->click(u"Hide Desktop Icon"_s);
        QTRY_COMPARE(colours(), u"red blue"_s);

        // A large selection is no new picture, and a new picture no large icon.
        m_program->drawIcon({0, 100, 1280, 300}, Qt::yellow);
        QTRY_COMPARE(colours(), u"yellow yellow"_s);
        m_program->setPicture(Qt::yellow, look.hasRootPixmap ? Qt::white : Qt::yellow);
        m_program->drawIcon({180, 180, 40, 40}, Qt::magenta);
        QTRY_COMPARE(colours(), u"magenta red"_s);

        m_program.reset();
        QTRY_COMPARE(colours(), u"red red"_s);
        startProgram(look);
        m_program->drawIcon({180, 180, 40, 40}, Qt::magenta);
        QTRY_COMPARE(colours(), u"magenta red"_s);
    }

    void unknownPicture_isBehindTheVideoWithItsIcons()
    {
        makeDesktop();
        startProgram({.right = Qt::cyan});
        m_program->drawIcon({180, 180, 40, 40}, Qt::magenta);
        start();

        QTRY_VERIFY(errors().contains("icons are behind the video"));
        QCOMPARE(colours(), u"red red"_s);
        m_program->setPicture(Qt::cyan, Qt::cyan);
        m_program->drawIcon({180, 180, 40, 40}, Qt::magenta);
        QTRY_COMPARE(colours(), u"magenta red"_s);
    }

    void cinnamonsIcons_areSeenWhicheverCameFirst()
    {
        makeDesktop();
        m_desktop->pretendCompositing();
        m_desktop->renameWindowManager("Mutter (Muffin)");
        start();
        // Its program for the icons ends when another window has the type desktop.
        const auto desktopType = m_desktop->atom("_NET_WM_WINDOW_TYPE_DESKTOP");
        const auto window = m_desktop->windowNamed(u"TavelorHelper"_s);
        QVERIFY(m_desktop->property(window, "_NET_WM_WINDOW_TYPE") != bytes(desktopType));

        startProgram({.left = Qt::transparent, .right = Qt::transparent, .hasAlpha = true});
        m_program->drawIcon({180, 180, 40, 40}, Qt::magenta);
        m_program->drawIcon({1060, 180, 40, 40}, QColor(0, 0, 0, 60)); // a shadow
        QTRY_COMPARE(colours(), u"magenta red"_s);
        m_program->removeIcon({180, 180, 40, 40});
        QTRY_COMPARE(colours(), u"red red"_s);
    }

    void iconsHiddenOnATransparentDesktop_leaveItItsMenu()
    {
        makeDesktop();
        m_desktop->pretendCompositing();
        startProgram({.hasAlpha = true});
        start(u"lime"_s);

        m_host->click(u"Hide Desktop Icon"_s);
        QTRY_COMPARE(m_desktop->rightColour(), u"red"_s);

        m_desktop->click({600, 300}, 3);
        QTRY_COMPARE(m_program->buttons(), (std::vector{3, -3}));
    }

    void showDesktop_hidesTheVideoForAsLong()
    {
        makeDesktop();
        startProgram({});
        start();

        m_desktop->showDesktop(true);
        QTRY_COMPARE(m_desktop->rightColour(), u"lime"_s);
        QTest::qWait(1000);
        QCOMPARE(m_desktop->rightColour(), u"lime"_s);
        m_desktop->showDesktop(false);
        QTRY_COMPARE(m_desktop->rightColour(), u"red"_s);
    }

    void serverWithoutAnExtension_showsTheVideoAndSaysWhatIsLost_data()
    {
        QTest::addColumn<QString>("extension");
        QTest::addColumn<bool>("areIconsSeen");
        QTest::newRow("no window behind another") << u"Composite"_s << false;
        QTest::newRow("no word of changes") << u"DAMAGE"_s << false;
        QTest::newRow("presses are not heard") << u"XInputExtension"_s << true;
        QTest::newRow("pictures are sent") << u"MIT-SHM"_s << true;
    }

    void serverWithoutAnExtension_showsTheVideoAndSaysWhatIsLost()
    {
        QFETCH(QString, extension);
        QFETCH(bool, areIconsSeen);
        makeDesktop({u"-extension"_s, extension});
        startProgram({});
        m_program->drawIcon({180, 180, 40, 40}, Qt::magenta);
        start();

        QTRY_COMPARE(colours(), areIconsSeen ? u"magenta red"_s : u"red red"_s);
        if (!areIconsSeen)
            QTRY_VERIFY(errors().contains("the X server lacks an extension"));
        m_desktop->click({600, 300}, 3);
        QTRY_COMPARE(m_program->buttons(), (std::vector{3, -3}));
        errors(); // Qt may miss one, too
    }

private:
    void makeDesktop(const QStringList& serverArguments = {})
    {
        m_desktop = std::make_unique<X11Desktop>(QSize(1280, 720), serverArguments);
        m_desktop->startWindowManager();
        m_host = std::make_unique<StatusNotifierHost>(m_desktop->busAddress());
        m_helper = std::make_unique<HelperProcess>(*m_desktop);
        m_helper->addVideo(u"r"_s, u"red"_s);
    }
    void startProgram(const DesktopProgram::Look& look)
    {
        m_program = std::make_unique<DesktopProgram>(*m_desktop, look);
        QTRY_VERIFY(m_desktop->colour({1000, 600}) != u"bare");
    }
    void start(const QString& seen = u"red"_s)
    {
        m_helper->start();
        QTRY_COMPARE(m_desktop->windowNamed(u"TavelorHelper"_s) != XCB_WINDOW_NONE, true);
        QTRY_COMPARE(m_desktop->rightColour(), seen);
        QTRY_VERIFY(m_host->hasEntry(u"Hide Desktop Icon"_s));
    }
    QString colours() const { return m_desktop->leftColour() + u' ' + m_desktop->rightColour(); }
    static QByteArray bytes(xcb_atom_t value)
    {
        return {reinterpret_cast<const char*>(&value), sizeof value};
    }
    QByteArray errors() { return m_errors += m_helper->process().readAllStandardError(); }
    int unmapCount() const
    {
        int count = 0;
        while (const auto event = own(xcb_poll_for_event(m_desktop->connection())))
            count += (event->response_type & 0x7f) == XCB_UNMAP_NOTIFY ? 1 : 0;
        return count;
    }

    std::unique_ptr<X11Desktop> m_desktop;
    std::unique_ptr<StatusNotifierHost> m_host;
    std::unique_ptr<DesktopProgram> m_program;
    std::unique_ptr<HelperProcess> m_helper;
    QByteArray m_errors;
};

QTEST_GUILESS_MAIN(ForeignDesktopTest)
#include "ForeignDesktopTest.moc"
