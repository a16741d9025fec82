#include "menu/StatusBarManager.h"
#include "platform/Application.h"
#include "player/ManagerFixture.h"

#include <QApplication>
#include <QTest>

#include <ranges>

using namespace Qt::StringLiterals;

namespace {

/// The menu of a manager whose windows, player and screens are recorded.
struct MenuFixture : ManagerFixture {
    explicit MenuFixture(const QByteArray& settings = {}) : ManagerFixture(u"abc"_s, settings)
    {
        Recording::screens() = {left, right};
        // The player's manager reads the screens and settings when it is made.
        manager = std::make_unique<VideoPlayerManager>(
            *preferences, *library, openings, workspace, distributedCenter, center);
        menu = std::make_unique<StatusBarManager>(
            *preferences, *manager, workspace, center, statusBar, info, bundle);
        start();
        menu->setDelegate({[this] { ++checks; }, [this] { ++ends; }});
        menu->buildMenu();
    }

    StatusBar statusBar;
    std::unique_ptr<StatusBarManager> menu;
    int checks = 0;
    int ends = 0;
};

QAction* item(const QString& path);

/// By titles from the top; the main menu without any.
QMenu& level(const QString& path)
{
    if (!path.isEmpty())
        return *item(path)->menu();
    const auto widgets = QApplication::topLevelWidgets();
    const auto isMain = [](QWidget* widget) {
        return widget->inherits("QMenu") && static_cast<QMenu*>(widget)->title().isEmpty();
    };
    return static_cast<QMenu&>(**std::ranges::find_if(widgets, isMain));
}

/// By titles from the top; null if there is none.
QAction* item(const QString& path)
{
    const auto actions = level(path.section(u'/', 0, -2)).actions();
    const auto at = std::ranges::find(actions, path.section(u'/', -1), &QAction::text);
    return at == actions.end() ? nullptr : *at;
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
         const auto* action : actions | std::views::filter(&QAction::isChecked))
        marked << action->text();
    return marked.join(u' ');
}

} // namespace

/// What the menu shows and what its items do.
class MenuTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void screens_areThereWhereThereAreSeveral()
    {
        MenuFixture fixture;
        const auto start = u"Main Window,1.0.0,Check for Updates...,-,Close Video Wallpaper,Pause,"
                           u"Hide Desktop Icon,Mute,-,"_s;
        QCOMPARE(titles({}), start + u"Screen,-,Quit"_s);
        QCOMPARE(titles(u"Screen"_s), u"Integration,Mirror,Single"_s);
        QCOMPARE(titles(u"Screen/Single"_s), u"1,2"_s);

        Recording::screens() = {left};
        fixture.center.post(Application::didChangeScreenParametersNotification());
        QCOMPARE(titles(u"Screen/Single"_s), u"1"_s);
        fixture.menu->teardown();
        fixture.menu->buildMenu();
        QCOMPARE(titles({}), start + u"Quit"_s);
        QTest::keyClick(&level({}), Qt::Key_1, Qt::ControlModifier);
        QCOMPARE(fixture.preferences->monitorArrange(), 0); // that key's item is not in the menu
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

    void screens_areChosen()
    {
        for (const auto& [clicks, arrangement, marked] :
            {std::tuple(u"Screen/Single/2,Screen/Single/2"_s, 2, u"Single 2"_s),
                std::tuple(u"Screen/Single/2,Screen/Mirror"_s, 1, u"Mirror 1"_s),
                std::tuple(u"Screen/Single/2,Screen/Integration"_s, 0, u"Integration 1"_s),
                std::tuple(u"Screen/Single"_s, 0, u"Integration 1"_s)}) { // the title of a menu
            const MenuFixture fixture;
            for (const auto& click : clicks.split(u','))
                item(click)->trigger();

            QCOMPARE(fixture.preferences->monitorArrange(), arrangement);
            QCOMPARE(fixture.preferences->screenIndex(), clicks.contains(u'2') ? 1 : 0);
            QCOMPARE(marks(), marked);
        }
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
        const auto enabled = [] {
            return item(u"Pause"_s)->isEnabled() + item(u"Hide Desktop Icon"_s)->isEnabled();
        };
        QCOMPARE(enabled(), 2);

        item(u"Close Video Wallpaper"_s)->trigger();
        QVERIFY(!fixture.preferences->isOpenPlayer());
        QVERIFY(Recording::take().contains(u"player pause"_s));
        QCOMPARE(enabled(), 0);

        fixture.preferences->setIsPlaying(false);
        item(u"Open Video Wallpaper"_s)->trigger();
        QVERIFY(fixture.preferences->isOpenPlayer());
        QVERIFY(fixture.preferences->isPlaying()); // what opens plays, as it does from outside
        QVERIFY(Recording::take().contains(u"player play"_s));
        QVERIFY(item(u"Close Video Wallpaper"_s));
        QCOMPARE(enabled(), 2);
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

        for (const bool isHidden : {true, false}) {
            item(u"Hide Desktop Icon"_s)->trigger();
            QCOMPARE(Recording::take().contains(u"window 1 front"_s), isHidden);
            fixture.preferences->setIsOpenPlayer(false);
            fixture.preferences->setIsOpenPlayer(true);
            QCOMPARE(item(u"Hide Desktop Icon"_s)->isChecked(), isHidden);
            Recording::take();
        }
    }

    void keys_workInEveryMenu()
    {
        for (const auto& path : {u""_s, u"Screen"_s, u"Screen/Single"_s}) {
            const MenuFixture fixture;
            auto& open = level(path);

            open.popup({});
            QTest::keyClick(&open, Qt::Key_2, Qt::ControlModifier);
            QCOMPARE(marks(), u"Single 2"_s);

            level({}).popup({});
            QTest::keyClick(&level({}), Qt::Key_Q, Qt::ControlModifier);
            QCOMPARE(fixture.ends, 1);
            QVERIFY(!level({}).isVisible());
        }
    }

    void otherItems_askOthers()
    {
        const MenuFixture fixture;

        item(u"Check for Updates..."_s)->trigger();
        QCOMPARE(fixture.checks, 1);
        item(u"Main Window"_s)->trigger();
        QCOMPARE(Recording::take(), QStringList{u"launch com.zemra.tavelor.macOS"_s});
        QVERIFY(!item(u"1.0.0"_s)->isEnabled());
    }
};

QTEST_MAIN(MenuTest)
#include "MenuTest.moc"
