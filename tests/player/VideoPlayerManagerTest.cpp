#include "player/VideoPlayerManager.h"

#include "platform/Recording.h"
#include "support/TemporaryHome.h"
#include "support/VideoRows.h"

#include <QDir>
#include <QTest>

#include <sqlite3.h>

#include <algorithm>

namespace {

QStringList strings(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const auto* text : texts)
        list << QString::fromUtf8(text);
    return list;
}

const Screen left{QStringLiteral("left"), QRect(0, 0, 800, 600)};
const Screen right{QStringLiteral("right"), QRect(800, 0, 800, 600)};

/// A library of videos whose files exist (empty ones: nothing here plays them), settings, and a
/// manager on the recording bodies.
struct Fixture {
    explicit Fixture(const QString& signs = QStringLiteral("abc"), const QByteArray& settings = {})
    {
        Recording::reset();
        Recording::screens() = {left};
        VideoRows::createTable(home.databaseFile());
        for (const auto sign : signs)
            addVideo(sign);
        TemporaryHome::writeFile(home.suiteFile(), "[General]\n" + settings);
        suite = PreferencesSuite::open(QStringLiteral("K7ZT3QW9RB.tavelor"),
            home.container() + QStringLiteral("/Preferences"));
        preferences = std::make_unique<Preferences>(*suite);
        library = std::make_unique<LocalVideoDBManager>(info, bundle);
        manager = std::make_unique<VideoPlayerManager>(
            *preferences, *library, workspace, distributedCenter, center);
    }

    QString file(const QString& sign) const
    {
        return home.path() + u'/' + sign + QStringLiteral(".mp4");
    }
    void addVideo(const QString& sign) const
    {
        TemporaryHome::writeFile(file(sign), "");
        VideoRows::insert(home.databaseFile(),
            {VideoRows::row(sign, QUrl::fromLocalFile(file(sign)).toString())});
    }
    void addRow(const QString& sign, const QString& url) const
    {
        VideoRows::insert(home.databaseFile(), {VideoRows::row(sign, url)});
    }

    /// Starts as the delegate does, and forgets what that recorded.
    void start()
    {
        manager->createWindows();
        Recording::take();
    }
    void endItem() { center.post(PlayerItem::didPlayToEndTimeNotification()); }
    void poll() { preferences->updateUserDefaultFromDisk(); }
    static QString playing()
    {
        const auto* item = Recording::currentItem();
        return item ? item->url().fileName().chopped(4) : QStringLiteral("nothing");
    }
    QString sign() const
    {
        return preferences->playingVideoSign().value_or(QStringLiteral("none"));
    }

    TemporaryHome home;
    Bundle bundle{home.path()};
    AppInfo info{bundle};
    Workspace workspace;
    DistributedNotificationCenter distributedCenter;
    NotificationCenter center;
    std::unique_ptr<PreferencesSuite> suite;
    std::unique_ptr<Preferences> preferences;
    std::unique_ptr<LocalVideoDBManager> library;
    std::unique_ptr<VideoPlayerManager> manager;
};

} // namespace

class VideoPlayerManagerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // -- windows

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

    // -- playing

    void preferences_driveThePlayer()
    {
        Fixture fixture;
        fixture.start();

        fixture.preferences->setIsPlaying(false);
        QCOMPARE(Recording::take(), strings({"player pause"}));
        fixture.preferences->setIsPlaying(true);
        QCOMPARE(Recording::take(), strings({"window 1 level 18", "window 1 back", "player play"}));
        fixture.preferences->setIsOpenPlayer(false);
        QCOMPARE(Recording::take(), strings({"player pause", "window 1 out"}));
        fixture.preferences->setIsOpenPlayer(true);
        QCOMPARE(Recording::take(),
            strings({"window 1 level 18",
                "window 1 back",
                "item a.mp4",
                "window 1 level 18",
                "window 1 back",
                "player play"}));
        fixture.preferences->setVolume(0.75F);
        fixture.preferences->setMute(true);
        QCOMPARE(Recording::take(), strings({"player volume 0.75", "player muted 1"}));
    }

    void volumeWithoutAPlayer_makesNone()
    {
        Fixture fixture;
        fixture.preferences->setVolume(0.75F);
        fixture.preferences->setMute(true);
        QCOMPARE(Recording::take(), QStringList());
    }

    void chosenSign_playsThatVideo()
    {
        Fixture fixture;
        fixture.start();

        fixture.home.writeSuiteValue(QStringLiteral("CurrentVideoSign"), QStringLiteral("b"));
        fixture.poll();

        QCOMPARE(Recording::take(),
            strings({"player pause",
                "window 1 level 18",
                "window 1 back",
                "item b.mp4",
                "window 1 level 18",
                "window 1 back",
                "player play"}));
        fixture.preferences->setPlayingVideoSign(QStringLiteral("b"));
        QCOMPARE(Recording::take(), QStringList()); // it plays already
    }

    void chosenSignWithoutAFile_deletesTheRowAndPlaysOn()
    {
        Fixture fixture;
        fixture.start();
        QFile::remove(fixture.file(QStringLiteral("b")));

        fixture.preferences->setPlayingVideoSign(QStringLiteral("b"));

        QCOMPARE(VideoRows::signs(fixture.home.databaseFile()), strings({"a", "c"}));
        QCOMPARE(Recording::take(), QStringList());
        QCOMPARE(Fixture::playing(), QStringLiteral("a"));
    }

    void chosenSignWhileTheLibraryIsLocked_deletesNothing()
    {
        Fixture fixture;
        fixture.start();
        QFile::remove(fixture.file(QStringLiteral("b")));
        sqlite3* writer = nullptr;
        sqlite3_open(fixture.home.databaseFile().toUtf8().constData(), &writer);
        sqlite3_exec(writer, "begin exclusive", nullptr, nullptr, nullptr);

        fixture.preferences->setPlayingVideoSign(QStringLiteral("b"));

        sqlite3_exec(writer, "rollback", nullptr, nullptr, nullptr);
        sqlite3_close(writer);
        QCOMPARE(VideoRows::signs(fixture.home.databaseFile()), strings({"a", "b", "c"}));
    }

    void chosenSignWhileTheLibraryIsLocked_isPlayedAfterwards()
    {
        Fixture fixture(QStringLiteral("abc"), "PlayModel=1\n");
        fixture.start();
        sqlite3* writer = nullptr;
        sqlite3_open(fixture.home.databaseFile().toUtf8().constData(), &writer);
        sqlite3_exec(writer, "begin exclusive", nullptr, nullptr, nullptr);

        fixture.preferences->setPlayingVideoSign(QStringLiteral("c"));
        fixture.endItem();                             // goes on to the next meanwhile
        QCOMPARE(fixture.sign(), QStringLiteral("c")); // and keeps the choice
        sqlite3_exec(writer, "rollback", nullptr, nullptr, nullptr);
        sqlite3_close(writer);

        QTRY_COMPARE(Fixture::playing(), QStringLiteral("c"));
        QCOMPARE(fixture.sign(), QStringLiteral("c"));
    }

    void listReadWhileTheLibraryIsLocked_isReadAgain()
    {
        Fixture fixture(QStringLiteral("ab"), "PlayModel=1\n");
        fixture.start();
        sqlite3* writer = nullptr;
        sqlite3_open(fixture.home.databaseFile().toUtf8().constData(), &writer);
        sqlite3_exec(writer, "begin exclusive", nullptr, nullptr, nullptr);

        fixture.distributedCenter.post(QStringLiteral("UpdateVideoList"));
        fixture.endItem();
        QCOMPARE(Fixture::playing(), QStringLiteral("nothing"));
        sqlite3_exec(writer, "commit", nullptr, nullptr, nullptr);
        sqlite3_close(writer);

        QTRY_COMPARE(Fixture::playing(), QStringLiteral("a"));
    }

    void endOfItem_followsThePlayOrder_data()
    {
        QTest::addColumn<QByteArray>("playModel");
        QTest::addColumn<QString>("played");
        QTest::newRow("single") << QByteArray("0") << "aaaaa";
        QTest::newRow("list") << QByteArray("1") << "abcab";
        QTest::newRow("out of range is single") << QByteArray("3") << "aaaaa";
    }

    void endOfItem_followsThePlayOrder()
    {
        QFETCH(QByteArray, playModel);
        Fixture fixture(QStringLiteral("abc"), "PlayModel=" + playModel + '\n');
        fixture.start();

        QString played = Fixture::playing();
        for (int i = 0; i < 4; ++i) {
            fixture.endItem();
            played += Fixture::playing();
            QCOMPARE(fixture.sign(), played.right(1));
        }
        QTEST(played, "played");
    }

    void single_restartsTheSameItem()
    {
        Fixture fixture;
        fixture.start();
        fixture.endItem();
        QCOMPARE(Recording::take(), strings({"item seek 0"}));
    }

    void random_playsEveryVideoOnceAPass()
    {
        const auto all = QStringLiteral("abcdefgh");
        Fixture fixture(all, "PlayModel=2\nCurrentVideoSign=d\n");
        fixture.start();
        QCOMPARE(Fixture::playing(), QStringLiteral("d"));

        // The first pass begins in the middle, at the chosen video. From the second on, passes are
        // whole, and a permutation each: cut the walk where that holds.
        QString played;
        for (int i = 0; i < 5 * all.size(); ++i) {
            played += Fixture::playing();
            fixture.endItem();
        }
        const auto isPermutation = [&](QString pass) {
            std::ranges::sort(pass);
            return pass == all;
        };
        bool isCut = false;
        for (qsizetype first = 1; first <= all.size() && !isCut; ++first) {
            QStringList passes;
            for (qsizetype at = first; at + all.size() <= played.size(); at += all.size())
                passes << played.mid(at, all.size());
            isCut = std::ranges::all_of(passes, isPermutation) && passes.removeDuplicates() < 3;
        }
        QVERIFY2(isCut, qUtf8Printable(played));
    }

    void playOrderChange_appliesFromTheNextEnd()
    {
        Fixture fixture;
        fixture.start();

        fixture.preferences->setPlayModel(1);
        QCOMPARE(Recording::take(), QStringList());
        fixture.endItem();
        QCOMPARE(Fixture::playing(), QStringLiteral("b"));
    }

    void unplayableRows_areSkipped_data()
    {
        QTest::addColumn<QString>("url");
        QTest::newRow("empty") << "";
        QTest::newRow("relative") << "videos/b.mp4";
        QTest::newRow("not a URL") << "http://[broken";
        QTest::newRow("not a file") << "https://example.com/etc/passwd";
        QTest::newRow("missing") << "file:///nowhere/b.mp4";
    }

    void unplayableRows_areSkipped()
    {
        QFETCH(QString, url);
        Fixture fixture(QStringLiteral("a"), "PlayModel=1\n");
        fixture.addRow(QStringLiteral("x"), url);
        fixture.addVideo(QStringLiteral("c"));
        fixture.start();

        fixture.endItem();

        QCOMPARE(Fixture::playing(), QStringLiteral("c"));
        QCOMPARE(fixture.sign(), QStringLiteral("c"));
        QVERIFY(VideoRows::signs(fixture.home.databaseFile()).contains(QStringLiteral("x")));
    }

    void oddButValidUrls_play_data()
    {
        QTest::addColumn<QString>("url");
        QTest::newRow("percent-encoded") << "file://%1/%E6%98%A0%E7%94%BB%20100%25%23.mp4";
        QTest::newRow("spaces and letters as they are") << "file://%1/映画 100%25%23.mp4";
        QTest::newRow("on localhost") << "file://localhost%1/映画 100%25%23.mp4";
        QTest::newRow("a plain path") << "%1/映画 100%#.mp4";
    }

    void oddButValidUrls_play()
    {
        QFETCH(QString, url);
        Fixture fixture{QString()};
        TemporaryHome::writeFile(fixture.home.path() + QStringLiteral("/映画 100%#.mp4"), "");
        fixture.addRow(QStringLiteral("x"), url.replace(QStringLiteral("%1"), fixture.home.path()));

        fixture.start();

        QVERIFY(Recording::currentItem());
        QCOMPARE(Recording::currentItem()->url().toLocalFile(),
            fixture.home.path() + QStringLiteral("/映画 100%#.mp4"));
    }

    void libraryWithoutFiles_leavesThePlayerWithoutAnItem()
    {
        Fixture fixture(QStringLiteral("ab"), "PlayModel=1\n");
        fixture.start();
        QFile::remove(fixture.file(QStringLiteral("a")));
        QFile::remove(fixture.file(QStringLiteral("b")));

        fixture.endItem();
        QCOMPARE(Fixture::playing(), QStringLiteral("nothing"));
        fixture.endItem(); // nothing to restart either
        fixture.preferences->setIsOpenPlayer(true);
        QCOMPARE(Fixture::playing(), QStringLiteral("nothing"));
    }

    void emptyLibrary_isSurvived()
    {
        Fixture fixture{QString()};
        fixture.start();
        fixture.endItem();
        fixture.preferences->setPlayModel(2);
        fixture.endItem();
        QCOMPARE(Fixture::playing(), QStringLiteral("nothing"));
        QCOMPARE(fixture.sign(), QStringLiteral("none"));
    }

    void failedItem_isSkippedLikeAFinishedOne()
    {
        Fixture fixture(QStringLiteral("abc"), "PlayModel=1\n");
        fixture.start();
        Recording::failCurrentItem();
        QCOMPARE(Fixture::playing(), QStringLiteral("b"));
        fixture.endItem();
        QCOMPARE(Fixture::playing(), QStringLiteral("c"));
        // Failures with successes in between are not a reason to stop trying.
        for (const auto* next : {"a", "b", "c"}) {
            Recording::failCurrentItem();
            QCOMPARE(Fixture::playing(), QLatin1String(next));
            fixture.endItem();
            fixture.endItem();
            fixture.endItem();
        }
    }

    void onlyTheCurrentItemsStatus_counts()
    {
        Fixture fixture(QStringLiteral("abc"), "PlayModel=1\n");
        fixture.start();
        auto* const old = Recording::currentItem();
        fixture.endItem();
        Q_EMIT old->statusChanged(PlayerItem::Status::Failed);
        QCOMPARE(Fixture::playing(), QStringLiteral("b"));
    }

    void whenEveryItemFails_thePlayerStopsTrying()
    {
        Fixture fixture(QStringLiteral("ab"), "PlayModel=1\n");
        fixture.start();
        Recording::failCurrentItem();
        Recording::failCurrentItem();
        QCOMPARE(Fixture::playing(), QStringLiteral("nothing"));

        // Whoever opens or chooses gets another try.
        fixture.preferences->setPlayingVideoSign(QStringLiteral("a"));
        QCOMPARE(Fixture::playing(), QStringLiteral("a"));
    }

    void updateVideoList_picksUpNewRows()
    {
        Fixture fixture(QStringLiteral("a"), "PlayModel=1\n");
        fixture.start();
        fixture.addVideo(QStringLiteral("n"));

        fixture.distributedCenter.post(QStringLiteral("UpdateVideoList"));
        fixture.endItem();

        QCOMPARE(Fixture::playing(), QStringLiteral("n"));
    }

    void observations_endWithTheManager()
    {
        Fixture fixture;
        fixture.start();
        fixture.manager.reset();
        Recording::take();

        fixture.preferences->setIsPlaying(false);
        fixture.preferences->setScreenIndex(1);
        fixture.endItem();
        fixture.distributedCenter.post(QStringLiteral("UpdateVideoList"));
        Q_EMIT fixture.workspace.activeSpaceDidChange();

        QCOMPARE(Recording::take(), QStringList());
    }
};

QTEST_GUILESS_MAIN(VideoPlayerManagerTest)
#include "VideoPlayerManagerTest.moc"
