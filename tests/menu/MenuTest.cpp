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
            *preferences, *library, workspace, distributedCenter, center);
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

    static QMenu& mainMenu()
    {
        const auto widgets = QApplication::topLevelWidgets();
        for (auto* const widget : widgets) {
            auto* const found = qobject_cast<QMenu*>(widget);
            if (found && !found->actions().isEmpty() &&
                found->actions().constLast()->text() == u"Quit")
                return *found;
        }
        qFatal("There is no menu.");
    }

    /// By titles from the top; null if there is none.
    static QAction* item(const QString& path)
    {
        const QMenu* level = &mainMenu();
        QAction* found = nullptr;
        for (const auto& title : path.split(u'/')) {
            const auto actions = level ? level->actions() : QList<QAction*>();
            const auto at = std::ranges::find(actions, title, &QAction::text);
            if (at == actions.end())
                return nullptr;
            found = *at;
            level = found->menu();
        }
        return found;
    }

    /// Of one level, "-" for separators.
    static QStringList titles(const QMenu& level)
    {
        QStringList titles;
        const auto actions = level.actions();
        for (const auto* action : actions)
            titles << (action->isSeparator() ? u"-"_s : action->text());
        return titles;
    }

    /// What is marked among the screens, for example "Single 2".
    static QString marks()
    {
        QStringList marked;
        for (const auto* path : {"Screen", "Screen/Single"}) {
            const auto actions = item(QLatin1String(path))->menu()->actions();
            for (const auto* action : actions) {
                if (action->isChecked())
                    marked << action->text();
            }
        }
        return marked.join(u' ');
    }

    StatusBar statusBar;
    std::unique_ptr<StatusBarManager> menu;
    int checks = 0;
    int ends = 0;
};

} // namespace

/// What the menu shows and what its items do.
class MenuTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void screens_areThereWhereThereAreSeveral()
    {
        MenuFixture fixture({}, 1);
        const auto withScreens = strings({"Main Window",
            "1.0.0",
            "Check for Updates...",
            "-",
            "Close Video Wallpaper",
            "Pause",
            "Hide Desktop Icon",
            "Mute",
            "-",
            "Screen",
            "-",
            "Quit"});
        auto withOne = withScreens;
        withOne.remove(9, 2);
        QCOMPARE(MenuFixture::titles(MenuFixture::mainMenu()), withOne);
        QVERIFY(!MenuFixture::item(u"1.0.0"_s)->isEnabled());

        MenuFixture::setScreens(2);
        fixture.menu->teardown();
        fixture.menu->buildMenu();

        QCOMPARE(MenuFixture::titles(MenuFixture::mainMenu()), withScreens);
        QCOMPARE(MenuFixture::titles(*MenuFixture::item(u"Screen"_s)->menu()),
            strings({"Integration", "Mirror", "Single"}));
        const auto& monitors = *MenuFixture::item(u"Screen/Single"_s)->menu();
        QCOMPARE(MenuFixture::titles(monitors), strings({"1", "2"}));
        MenuFixture::setScreens(1);
        fixture.center.post(Application::didChangeScreenParametersNotification());
        QCOMPARE(MenuFixture::titles(monitors), strings({"1"}));
    }

    void settings_areMarkedAtTheStart_data()
    {
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<QString>("marks");

        QTest::newRow("none") << QByteArray() << u"Integration 1"_s;
        QTest::newRow("mirrored") << QByteArray("MonitorArrange=1\n") << u"Mirror 1"_s;
        QTest::newRow("one") << QByteArray("MonitorArrange=2\nScreenIndex=1\n") << u"Single 2"_s;
        QTest::newRow("one that is not there")
            << QByteArray("MonitorArrange=2\nScreenIndex=2\n") << u"Single"_s;
    }

    void settings_areMarkedAtTheStart()
    {
        QFETCH(QByteArray, settings);
        const MenuFixture fixture(settings);
        QTEST(MenuFixture::marks(), "marks");
    }

    void screens_areChosen_data()
    {
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<int>("monitorArrange");
        QTest::addColumn<QString>("marks");

        QTest::newRow("one") << strings({"Screen/Single/2"}) << 2 << u"Single 2"_s;
        QTest::newRow("the same again")
            << strings({"Screen/Single/2", "Screen/Single/2"}) << 2 << u"Single 2"_s;
        QTest::newRow("mirrored") << strings({"Screen/Single/2", "Screen/Mirror"}) << 1
                                  << u"Mirror 1"_s;
        QTest::newRow("integrated")
            << strings({"Screen/Single/2", "Screen/Integration"}) << 0 << u"Integration 1"_s;
        QTest::newRow("the title of a menu")
            << strings({"Screen/Single"}) << 0 << u"Integration 1"_s;
    }

    void screens_areChosen()
    {
        QFETCH(QStringList, clicks);
        const MenuFixture fixture;

        for (const auto& click : clicks)
            MenuFixture::item(click)->trigger();

        QTEST(static_cast<int>(fixture.preferences->monitorArrange()), "monitorArrange");
        QTEST(MenuFixture::marks(), "marks");
        QCOMPARE(fixture.preferences->screenIndex(), clicks[0].endsWith(u'2') ? 1 : 0);
    }

    void choicesFromOutside_areMarked()
    {
        const MenuFixture fixture;

        fixture.preferences->setMonitorArrange(1);
        QCOMPARE(MenuFixture::marks(), u"Mirror 1"_s);
        fixture.preferences->setScreenIndex(1);
        fixture.preferences->setMonitorArrange(2);
        QCOMPARE(MenuFixture::marks(), u"Single 2"_s);
        fixture.preferences->setMute(true);
        QVERIFY(MenuFixture::item(u"Mute"_s)->isChecked());
        fixture.preferences->setIsPlaying(false);
        QVERIFY(MenuFixture::item(u"Play"_s));
    }

    void wallpaper_isClosedAndOpened()
    {
        const MenuFixture fixture;
        const auto areEnabled = [](const QString& play) {
            return MenuFixture::item(play)->isEnabled() &&
                   MenuFixture::item(u"Hide Desktop Icon"_s)->isEnabled();
        };
        QVERIFY(areEnabled(u"Pause"_s));

        MenuFixture::item(u"Close Video Wallpaper"_s)->trigger();
        QVERIFY(!fixture.preferences->isOpenPlayer());
        QVERIFY(Recording::take().contains(u"player pause"_s));
        QVERIFY(!areEnabled(u"Pause"_s));

        fixture.preferences->setIsPlaying(false);
        MenuFixture::item(u"Open Video Wallpaper"_s)->trigger();
        QVERIFY(fixture.preferences->isOpenPlayer());
        QVERIFY(fixture.preferences->isPlaying()); // what opens plays, as it does from outside
        QVERIFY(Recording::take().contains(u"player play"_s));
        QVERIFY(MenuFixture::item(u"Close Video Wallpaper"_s));
        QVERIFY(areEnabled(u"Pause"_s));
    }

    void video_isPausedAndMuted()
    {
        const MenuFixture fixture;

        MenuFixture::item(u"Pause"_s)->trigger();
        QVERIFY(!fixture.preferences->isPlaying());
        QCOMPARE(Recording::take().last(), u"player pause"_s);
        MenuFixture::item(u"Play"_s)->trigger();
        QVERIFY(fixture.preferences->isPlaying());
        QVERIFY(Recording::take().contains(u"player play"_s));
        QVERIFY(MenuFixture::item(u"Pause"_s));

        for (const bool isMuted : {true, false}) {
            MenuFixture::item(u"Mute"_s)->trigger();
            QCOMPARE(MenuFixture::item(u"Mute"_s)->isChecked(), isMuted);
            QCOMPARE(fixture.preferences->mute(), isMuted);
            QCOMPARE(fixture.manager->isMuted(), isMuted);
        }
    }

    void desktopIcons_areHiddenAndShown()
    {
        const MenuFixture fixture;
        const auto isHidden = [] { return MenuFixture::item(u"Hide Desktop Icon"_s)->isChecked(); };

        MenuFixture::item(u"Hide Desktop Icon"_s)->trigger();
        QVERIFY(Recording::take().contains(u"window 1 front"_s));
        QVERIFY(isHidden());
        fixture.preferences->setIsOpenPlayer(false);
        fixture.preferences->setIsOpenPlayer(true);
        QVERIFY(isHidden());
        Recording::take();

        MenuFixture::item(u"Hide Desktop Icon"_s)->trigger();
        QVERIFY(Recording::take().contains(u"window 1 back"_s));
        QVERIFY(!isHidden());
    }

    void keys_workInEveryMenu_data()
    {
        QTest::addColumn<QString>("path"); // of the submenu that is open

        QTest::newRow("main menu") << QString();
        QTest::newRow("screens") << u"Screen"_s;
        QTest::newRow("monitors") << u"Screen/Single"_s;
    }

    void keys_workInEveryMenu()
    {
        QFETCH(QString, path);
        const MenuFixture fixture;
        auto& open = path.isEmpty() ? MenuFixture::mainMenu() : *MenuFixture::item(path)->menu();

        open.popup({});
        QTest::keyClick(&open, Qt::Key_2, Qt::ControlModifier);
        QCOMPARE(MenuFixture::marks(), u"Single 2"_s);

        MenuFixture::mainMenu().popup({});
        QTest::keyClick(&MenuFixture::mainMenu(), Qt::Key_Q, Qt::ControlModifier);
        QCOMPARE(fixture.ends, 1);
        QVERIFY(!MenuFixture::mainMenu().isVisible());
    }

    void otherItems_askOthers()
    {
        const MenuFixture fixture({}, 1);

        MenuFixture::item(u"Check for Updates..."_s)->trigger();
        MenuFixture::item(u"Main Window"_s)->trigger();
        QTest::keyClick(&MenuFixture::mainMenu(), Qt::Key_1, Qt::ControlModifier);

        QCOMPARE(fixture.checks, 1);
        QVERIFY(Recording::take().contains(u"launch com.zemra.tavelor.macOS"_s));
        QCOMPARE(fixture.preferences->monitorArrange(), 0); // that key's item is not in the menu
    }
};

QTEST_MAIN(MenuTest)
#include "MenuTest.moc"
