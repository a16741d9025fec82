#include "player/ManagerFixture.h"

#include <QTest>

using Fixture = ManagerFixture;

/// Which windows there are, where their views lie, and how they are ordered.
class VideoPlayerManagerWindowsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void createWindows_whileOpen_buildsAndPlaysInOrder()
    {
        Fixture fixture(u"ab"_s, "Volume=0.25\nMute=true\nMonitorArrange=0\n");
        Recording::screens() = {left, right};

        fixture.manager->createWindows();

        QCOMPARE(Fixture::took(),
            QString("window 1 made 0,0 800x600 style 4 backing 2 on left; window 1 behavior 9; "
                    "window 1 click action; player made; item a.mp4; player action at end 2; "
                    "player volume 0.25; player muted 1; window 1 view 0,0 1600x600; "
                    "window 1 level 18; window 1 back; "
                    "window 2 made 0,0 800x600 style 4 backing 2 on right; "
                    "window 2 behavior 9; window 2 click action; "
                    "window 2 view -800,0 1600x600; window 2 level 18; window 2 back; "
                    "window 1 level 18; window 1 back; window 2 level 18; window 2 back; "
                    "player play"));
        QCOMPARE(fixture.sign(), u"a"_s);
    }

    void createWindows_whileClosed_hidesThem()
    {
        Fixture fixture(u"a"_s, "IsOpenPlayer=false\nisPlaying=false\n");

        fixture.manager->createWindows();

        QCOMPARE(Recording::take().mid(11), strings({"player pause", "window 1 out"}));
        QVERIFY(!fixture.preferences->isPlaying());
        QCOMPARE(fixture.sign(), u"none"_s);
    }

    void createWindows_whilePaused_startsPlaying()
    {
        Fixture fixture(u"a"_s, "isPlaying=false\n");
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
        Fixture atStart(u"a"_s, "MonitorArrange=" + QByteArray::number(raw) + '\n');
        QTEST(atStart.manager->valueForKey(u"screenType"_s).toInt(), "atStart");
        Fixture later;
        later.preferences->setMonitorArrange(raw);
        QTEST(later.manager->valueForKey(u"screenType"_s).toInt(), "later");
    }

    void lonely_usesTheChosenScreenOrTheFirst_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("screen");
        QTest::newRow("the second") << 1 << "right";
        QTest::newRow("just beyond the last") << 2 << "left";
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
        QCOMPARE(lines[0], u"window 1 out"_s); // the old ones go first
        QCOMPARE(lines.filter(u"made"_s),
            QStringList{u"window 3 made 0,0 800x600 style 4 backing 2 on "_s + screen});
        QCOMPARE(fixture.manager->valueForKey(u"screenType"_s).toInt(), 2);
        QCOMPARE(fixture.manager->valueForKey(u"screenIndex"_s).toInt(), index);
    }

    void screenChanges_rebuildOnlyWhenSomethingChanged()
    {
        Fixture fixture;
        fixture.start();
        const auto rebuilds = [&] {
            fixture.manager->screenParametersDidChange();
            return !Recording::take().filter(u"made"_s).isEmpty();
        };

        QVERIFY(!rebuilds());
        Recording::screens() = {{u"other name"_s, left.frame}};
        QVERIFY(!rebuilds()); // only the frames count
        Recording::screens() = {left, right};
        QVERIFY(rebuilds());
        Recording::screens() = {right, left};
        QVERIFY(!rebuilds());
        Recording::screens() = {left, {u"right"_s, QRect(800, 0, 1024, 768)}};
        QVERIFY(rebuilds());
        Recording::screens() = {};
        QVERIFY(!rebuilds()); // no screens, no windows, no crash
        QVERIFY(!rebuilds());
        Recording::screens() = {left};
        QVERIFY(rebuilds());
    }

    void screensThatChangedWhileClosed_areUsedWhenItOpens()
    {
        Fixture fixture;
        fixture.start();
        fixture.preferences->setIsOpenPlayer(false);
        Recording::take();
        Recording::screens() = {right};
        fixture.manager->screenParametersDidChange();
        QCOMPARE(Recording::take(), QStringList());

        fixture.preferences->setIsOpenPlayer(true);
        const auto lines = Recording::take();
        QCOMPARE(lines.filter(u"made"_s),
            strings({"window 2 made 0,0 800x600 style 4 backing 2 on right"}));
        QCOMPARE(lines.last(), u"player play"_s);
        fixture.preferences->setIsOpenPlayer(true);
        QCOMPARE(Recording::take().filter(u"made"_s), QStringList());
    }

    void hidingIcons_reordersWhileOpenAndIsRememberedWhileClosed()
    {
        Fixture fixture;
        fixture.start();

        fixture.manager->setHideDesktopIcon(true);
        QCOMPARE(Fixture::took(), QString("window 1 level 18; window 1 front"));
        Q_EMIT fixture.workspace.activeSpaceDidChange();
        QCOMPARE(Fixture::took(), QString("window 1 level 18; window 1 front"));

        fixture.preferences->setIsOpenPlayer(false);
        Recording::take();
        fixture.manager->setHideDesktopIcon(false);
        Q_EMIT fixture.workspace.activeSpaceDidChange();
        QCOMPARE(Recording::take(), QStringList());
        fixture.preferences->setIsOpenPlayer(true);
        QCOMPARE(Recording::take().mid(0, 2), strings({"window 1 level 18", "window 1 back"}));
    }
};

QTEST_GUILESS_MAIN(VideoPlayerManagerWindowsTest)
#include "VideoPlayerManagerWindowsTest.moc"
