#include "player/ManagerFixture.h"

#include <QDir>
#include <QTest>

#include <algorithm>
#include <optional>

using Fixture = ManagerFixture;

/// What plays, what comes next, and what the preferences and the library have to do with it.
class VideoPlayerManagerPlaybackTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
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
        std::optional<VideoRows::Writer> writer(fixture.home.databaseFile());

        fixture.preferences->setPlayingVideoSign(QStringLiteral("b"));

        writer.reset();
        QCOMPARE(VideoRows::signs(fixture.home.databaseFile()), strings({"a", "b", "c"}));
    }

    void chosenSignWhileTheLibraryIsLocked_isPlayedAfterwards()
    {
        Fixture fixture(QStringLiteral("abc"), "PlayModel=1\n");
        fixture.start();
        std::optional<VideoRows::Writer> writer(fixture.home.databaseFile());

        fixture.preferences->setPlayingVideoSign(QStringLiteral("c"));
        fixture.endItem();                             // goes on to the next meanwhile
        QCOMPARE(fixture.sign(), QStringLiteral("c")); // and keeps the choice
        writer.reset();

        QTRY_COMPARE(Fixture::playing(), QStringLiteral("c"));
        QCOMPARE(fixture.sign(), QStringLiteral("c"));
    }

    void listReadWhileTheLibraryIsLocked_isReadAgain()
    {
        Fixture fixture(QStringLiteral("ab"), "PlayModel=1\n");
        fixture.start();
        std::optional<VideoRows::Writer> writer(fixture.home.databaseFile());

        fixture.distributedCenter.post(QStringLiteral("UpdateVideoList"));
        fixture.endItem();
        QCOMPARE(Fixture::playing(), QStringLiteral("nothing"));
        writer.reset();

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

QTEST_GUILESS_MAIN(VideoPlayerManagerPlaybackTest)
#include "VideoPlayerManagerPlaybackTest.moc"
