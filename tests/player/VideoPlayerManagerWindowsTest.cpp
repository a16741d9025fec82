#include "player/ManagerFixture.h"

#include <QTest>

using Fixture = ManagerFixture;

/// Which windows there are, where their views lie, and how they are ordered.
class VideoPlayerManagerWindowsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void createWindows_whileOpen_buildsAndPlaysInOrder()
    {
        Fixture fixture(QStringLiteral("ab"), "Volume=0.25\nMute=true\nMonitorArrange=0\n");
        Recording::screens() = {left, right};

        fixture.manager->createWindows();

        QCOMPARE(Recording::take(),
            strings({"window 1 made 0,0 800x600 style 4 backing 2 on left",
                "window 1 behavior 9",
                "window 1 click action",
                "player made",
                "item a.mp4",
                "player action at end 2",
                "player volume 0.25",
                "player muted 1",
                "window 1 view 0,0 1600x600",
                "window 1 level 18",
                "window 1 back",
                "window 2 made 0,0 800x600 style 4 backing 2 on right",
                "window 2 behavior 9",
                "window 2 click action",
                "window 2 view -800,0 1600x600",
                "window 2 level 18",
                "window 2 back",
                "window 1 level 18",
                "window 1 back",
                "window 2 level 18",
                "window 2 back",
                "player play"}));
        QCOMPARE(fixture.sign(), QStringLiteral("a"));
    }

    void createWindows_whileClosed_hidesThem()
    {
        Fixture fixture(QStringLiteral("a"), "IsOpenPlayer=false\nisPlaying=false\n");

        fixture.manager->createWindows();

        QCOMPARE(Recording::take().mid(11), strings({"player pause", "window 1 out"}));
        QVERIFY(!fixture.preferences->isPlaying());
        QCOMPARE(fixture.sign(), QStringLiteral("none"));
    }

    void createWindows_whilePaused_startsPlaying()
    {
        Fixture fixture(QStringLiteral("a"), "isPlaying=false\n");
        fixture.manager->createWindows();
        QVERIFY(fixture.preferences->isPlaying());
    }

    void screenTypes_areMappedDifferentlyAtStartAndLater_data()
    {
        QTest::addColumn<int>("raw");
        QTest::addColumn<int>("atStart");
        QTest::addColumn<int>("later");
        QTest::newRow("combo") << 0 << 0 << 0;
        QTest::newRow("dynamic") << 1 << 1 << 1;
        QTest::newRow("lonely") << 2 << 2 << 2;
        QTest::newRow("beyond") << 3 << 1 << 2;
        QTest::newRow("negative") << -1 << 1 << 2;
    }

    void screenTypes_areMappedDifferentlyAtStartAndLater()
    {
        QFETCH(int, raw);
        Fixture atStart(QStringLiteral("a"), "MonitorArrange=" + QByteArray::number(raw) + '\n');
        QTEST(atStart.manager->valueForKey(QStringLiteral("screenType")).toInt(), "atStart");
        Fixture later;
        later.preferences->setMonitorArrange(raw);
        QTEST(later.manager->valueForKey(QStringLiteral("screenType")).toInt(), "later");
    }

    void lonely_usesTheChosenScreenOrTheFirst_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("screen");
        QTest::newRow("the second") << 1 << "right";
        QTest::newRow("beyond the last") << 5 << "left";
        QTest::newRow("negative") << -1 << "left";
    }

    void lonely_usesTheChosenScreenOrTheFirst()
    {
        QFETCH(int, index);
        QFETCH(QString, screen);
        Fixture fixture;
        Recording::screens() = {left, right};
        fixture.start();

        fixture.preferences->setScreenIndex(index);

        auto lines = Recording::take();
        QCOMPARE(lines[0], QStringLiteral("window 1 out")); // the old ones go first
        QCOMPARE(lines.filter(QStringLiteral("made")),
            QStringList{
                QStringLiteral("window 3 made 0,0 800x600 style 4 backing 2 on ") + screen});
        QCOMPARE(fixture.manager->valueForKey(QStringLiteral("screenType")).toInt(), 2);
        QCOMPARE(fixture.manager->valueForKey(QStringLiteral("screenIndex")).toInt(), index);
    }

    void screenChanges_rebuildOnlyWhenSomethingChanged()
    {
        Fixture fixture;
        fixture.start();
        const auto rebuilds = [&] {
            fixture.manager->screenParametersDidChange();
            return !Recording::take().filter(QStringLiteral("made")).isEmpty();
        };

        QVERIFY(!rebuilds());
        Recording::screens() = {{QStringLiteral("other name"), left.frame}};
        QVERIFY(!rebuilds()); // only the frames count
        Recording::screens() = {left, right};
        QVERIFY(rebuilds());
        Recording::screens() = {right, left};
        QVERIFY(!rebuilds());
        Recording::screens() = {left, {QStringLiteral("right"), QRect(800, 0, 1024, 768)}};
        QVERIFY(rebuilds());
        Recording::screens() = {};
        QVERIFY(!rebuilds()); // no screens, no windows, no crash
        QVERIFY(!rebuilds());
        Recording::screens() = {left};
        QVERIFY(rebuilds());

        fixture.preferences->setIsOpenPlayer(false);
        Recording::screens() = {left, right};
        QVERIFY(!rebuilds());
    }

    void hidingIcons_reordersWhileOpenAndIsRememberedWhileClosed()
    {
        Fixture fixture;
        fixture.start();

        fixture.manager->setHideDesktopIcon(true);
        QCOMPARE(Recording::take(), strings({"window 1 level 18", "window 1 front"}));
        Q_EMIT fixture.workspace.activeSpaceDidChange();
        QCOMPARE(Recording::take(), strings({"window 1 level 18", "window 1 front"}));

        fixture.preferences->setIsOpenPlayer(false);
        Recording::take();
        fixture.manager->setHideDesktopIcon(false);
        QCOMPARE(Recording::take(), QStringList());
        fixture.preferences->setIsOpenPlayer(true);
        QCOMPARE(Recording::take().mid(0, 2), strings({"window 1 level 18", "window 1 back"}));
    }
};

QTEST_GUILESS_MAIN(VideoPlayerManagerWindowsTest)
#include "VideoPlayerManagerWindowsTest.moc"
