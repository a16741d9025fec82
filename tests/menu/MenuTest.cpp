#include "menu/StatusBarManager.h"
#include "platform/Application.h"
#include "player/ManagerFixture.h"

#include <QApplication>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// The menu of a manager whose windows, player and screens are recorded.
struct MenuFixture : ManagerFixture {
    explicit MenuFixture(const QByteArray& settings = {}, int screens = 2)
        : ManagerFixture(u"abc"_s, settings)
    {
        setScreens(screens);
        // The player's manager reads the screens and settings when it is made.
        manager = std::make_unique<VideoPlayerManager>(
            *preferences, *library, openings, workspace, distributedCenter, center);
        menu = std::make_unique<StatusBarManager>(
            *preferences, *manager, workspace, center, statusBar, info, bundle);
        start();
        menu->setDelegate({[this] { ++checks; }, [this] { ++ends; }});
        menu->buildMenu();
    }

    static void setScreens(int count)
    {
        Recording::screens() = {left, right};
        Recording::screens().resize(static_cast<std::size_t>(count));
    }

    StatusBar statusBar;
    std::unique_ptr<StatusBarManager> menu;
    int checks = 0;
    int ends = 0;
};

QMenu& mainMenu()
{
    const auto widgets = QApplication::topLevelWidgets();
    for (auto* const widget : widgets) {
        if (auto* const menu = qobject_cast<QMenu*>(widget);
            menu && !menu->actions().isEmpty() && menu->actions().constLast()->text() == u"Quit")
            return *menu;
    }
    qFatal("There is no menu.");
}

/// By titles from the top; null if there is none.
QAction* item(const QString& path)
{
    const auto parent = path.section(u'/', 0, -2);
    const auto actions = (parent.isEmpty() ? mainMenu() : *item(parent)->menu()).actions();
    const auto at = std::ranges::find(actions, path.section(u'/', -1), &QAction::text);
    return at == actions.end() ? nullptr : *at;
}

QMenu& level(const QString& path)
{
    return path.isEmpty() ? mainMenu() : *item(path)->menu();
}

/// Of one level, "-" for separators.
QString titles(const QString& path)
{
    QStringList titles;
    for (const auto actions = level(path).actions(); const auto* action : actions)
        titles << (action->isSeparator() ? u"-"_s : action->text());
    return titles.join(u',');
}

/// What is marked among the screens, for example "Single 2".
QString marks()
{
    QStringList marked;
    for (const auto actions = level(u"Screen"_s).actions() + level(u"Screen/Single"_s).actions();
         const auto* action : actions) {
        if (action->isChecked())
            marked << action->text();
    }
    return marked.join(u' ');
}

} // namespace

/// What the menu shows and what its items do.
class MenuTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void screens_areThereWhereThereAreSeveral()
    {
        MenuFixture fixture({}, 1);
        const auto start = u"Main Window,1.0.0,Check for Updates...,-,Close Video Wallpaper,Pause,"
                           u"Hide Desktop Icon,Mute,-,"_s;
        QCOMPARE(titles({}), start + u"Quit"_s);
        QVERIFY(!item(u"1.0.0"_s)->isEnabled());

        MenuFixture::setScreens(2);
        fixture.menu->teardown();
        fixture.menu->buildMenu();

        QCOMPARE(titles({}), start + u"Screen,-,Quit"_s);
        QCOMPARE(titles(u"Screen"_s), u"Integration,Mirror,Single"_s);
        QCOMPARE(titles(u"Screen/Single"_s), u"1,2"_s);
        MenuFixture::setScreens(1);
        fixture.center.post(Application::didChangeScreenParametersNotification());
        QCOMPARE(titles(u"Screen/Single"_s), u"1"_s);
    }

    void settings_areMarkedAtTheStart()
    {
        for (const auto& [settings, marked] : {std::pair("", u"Integration 1"_s),
                 std::pair("MonitorArrange=1\n", u"Mirror 1"_s),
                 std::pair("MonitorArrange=2\nScreenIndex=1\n", u"Single 2"_s),
                 std::pair("MonitorArrange=2\nScreenIndex=2\n", u"Single"_s)}) {
            const MenuFixture fixture(settings);
            QCOMPARE(marks(), marked);
        }
    }

    void screens_areChosen_data()
    {
        QTest::addColumn<QString>("clicks");
        QTest::addColumn<int>("monitorArrange");
        QTest::addColumn<QString>("marks");

        QTest::newRow("one") << "Screen/Single/2" << 2 << u"Single 2"_s;
        QTest::newRow("the same again") << "Screen/Single/2,Screen/Single/2" << 2 << u"Single 2"_s;
        QTest::newRow("mirrored") << "Screen/Single/2,Screen/Mirror" << 1 << u"Mirror 1"_s;
        QTest::newRow("integrated")
            << "Screen/Single/2,Screen/Integration" << 0 << u"Integration 1"_s;
        QTest::newRow("the title of a menu") << "Screen/Single" << 0 << u"Integration 1"_s;
    }

    void screens_areChosen()
    {
        QFETCH(QString, clicks);
        const MenuFixture fixture;

        for (const auto& click : clicks.split(u','))
            item(click)->trigger();

        QTEST(static_cast<int>(fixture.preferences->monitorArrange()), "monitorArrange");
        QTEST(marks(), "marks");
        QCOMPARE(fixture.preferences->screenIndex(), clicks.contains(u'2') ? 1 : 0);
    }

    void choicesFromOutside_areMarked()
    {
        const MenuFixture fixture;

        fixture.preferences->setMonitorArrange(1);
        QCOMPARE(marks(), u"Mirror 1"_s);
        fixture.preferences->setScreenIndex(1);
        fixture.preferences->setMonitorArrange(2);
        QCOMPARE(marks(), u"Single 2"_s);
        fixture.preferences->setMute(true);
        QVERIFY(item(u"Mute"_s)->isChecked());
        fixture.preferences->setIsPlaying(false);
        QVERIFY(item(u"Play"_s));
    }

    void wallpaper_isClosedAndOpened()
    {
        const MenuFixture fixture;
        const auto enabled = [](const QString& play) {
            return item(play)->isEnabled() + item(u"Hide Desktop Icon"_s)->isEnabled();
        };
        QCOMPARE(enabled(u"Pause"_s), 2);

        item(u"Close Video Wallpaper"_s)->trigger();
        QVERIFY(!fixture.preferences->isOpenPlayer());
        QVERIFY(Recording::take().contains(u"player pause"_s));
        QCOMPARE(enabled(u"Pause"_s), 0);

        fixture.preferences->setIsPlaying(false);
        item(u"Open Video Wallpaper"_s)->trigger();
        QVERIFY(fixture.preferences->isOpenPlayer());
        QVERIFY(fixture.preferences->isPlaying()); // what opens plays, as it does from outside
        QVERIFY(Recording::take().contains(u"player play"_s));
        QVERIFY(item(u"Close Video Wallpaper"_s));
        QCOMPARE(enabled(u"Pause"_s), 2);
    }

    void video_isPausedAndMuted()
    {
        const MenuFixture fixture;

        item(u"Pause"_s)->trigger();
        QVERIFY(!fixture.preferences->isPlaying());
        QCOMPARE(Recording::take().last(), u"player pause"_s);
        item(u"Play"_s)->trigger();
        QVERIFY(fixture.preferences->isPlaying());
        QVERIFY(Recording::take().contains(u"player play"_s));
        QVERIFY(item(u"Pause"_s));

        for (const bool isMuted : {true, false}) {
            item(u"Mute"_s)->trigger();
            QCOMPARE(item(u"Mute"_s)->isChecked(), isMuted);
            QCOMPARE(fixture.preferences->mute(), isMuted);
            QCOMPARE(fixture.manager->isMuted(), isMuted);
        }
    }

    void desktopIcons_areHiddenAndShown()
    {
        const MenuFixture fixture;
        const auto isHidden = [] { return item(u"Hide Desktop Icon"_s)->isChecked(); };

        item(u"Hide Desktop Icon"_s)->trigger();
        QVERIFY(Recording::take().contains(u"window 1 front"_s));
        QVERIFY(isHidden());
        fixture.preferences->setIsOpenPlayer(false);
        fixture.preferences->setIsOpenPlayer(true);
        QVERIFY(isHidden());
    }

    void keys_workInEveryMenu()
    {
        for (const auto& path : {u""_s, u"Screen"_s, u"Screen/Single"_s}) {
            const MenuFixture fixture;
            auto& open = level(path);

            open.popup({});
            QTest::keyClick(&open, Qt::Key_2, Qt::ControlModifier);
            QCOMPARE(marks(), u"Single 2"_s);

            mainMenu().popup({});
            QTest::keyClick(&mainMenu(), Qt::Key_Q, Qt::ControlModifier);
            QCOMPARE(fixture.ends, 1);
            QVERIFY(!mainMenu().isVisible());
        }
    }

    void otherItems_askOthers()
    {
        const MenuFixture fixture({}, 1);

        item(u"Check for Updates..."_s)->trigger();
        item(u"Main Window"_s)->trigger();
        QTest::keyClick(&mainMenu(), Qt::Key_1, Qt::ControlModifier);

        QCOMPARE(fixture.checks, 1);
        QVERIFY(Recording::take().contains(u"launch com.zemra.tavelor.macOS"_s));
        QCOMPARE(fixture.preferences->monitorArrange(), 0); // that key's item is not in the menu
    }
};

QTEST_MAIN(MenuTest)
#include "MenuTest.moc"
