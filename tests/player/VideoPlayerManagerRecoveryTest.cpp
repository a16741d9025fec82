#include "player/ManagerFixture.h"

#include <QTest>

#include <optional>

using Fixture = ManagerFixture;

/// Files that are missing, broken or deadly, and a library that cannot be read for a while.
class VideoPlayerManagerRecoveryTest : public QObject {
    Q_OBJECT

    static void fail() { Recording::setCurrentItemStatus(PlayerItem::Status::Failed); }

private Q_SLOTS:
    void chosenSignWhileTheLibraryIsLocked_deletesNothing()
    {
        Fixture fixture;
        fixture.start();
        QFile::remove(fixture.file(u"b"_s));
        std::optional<VideoRows::Writer> writer(fixture.home.databaseFile());

        fixture.preferences->setPlayingVideoSign(u"b"_s);

        writer.reset();
        QCOMPARE(VideoRows::signs(fixture.home.databaseFile()), strings({"a", "b", "c"}));
    }

    void chosenSignWhileTheLibraryIsLocked_isPlayedAfterwards()
    {
        Fixture fixture(u"abc"_s, "PlayModel=1\n");
        fixture.start();
        std::optional<VideoRows::Writer> writer(fixture.home.databaseFile());

        fixture.preferences->setPlayingVideoSign(u"c"_s);
        fixture.endItem();                // goes on to the next meanwhile
        QCOMPARE(fixture.sign(), u"c"_s); // and keeps the choice
        writer.reset();

        QTRY_COMPARE(Fixture::playing(), u"c"_s);
        QCOMPARE(fixture.sign(), u"c"_s);
    }

    void choiceDelayedByALock_doesNotOpenAClosedWallpaper()
    {
        Fixture fixture;
        fixture.start();
        std::optional<VideoRows::Writer> writer(fixture.home.databaseFile());
        fixture.preferences->setPlayingVideoSign(u"c"_s);
        fixture.preferences->setIsOpenPlayer(false);
        Recording::take();
        writer.reset();

        QTest::qWait(1200); // the library is asked again after a second
        QCOMPARE(Recording::take().filter(u"window"_s), QStringList());
        fixture.preferences->setIsOpenPlayer(true);
        QCOMPARE(Fixture::playing(), u"c"_s);
    }

    void listWhileTheLibraryIsLocked_staysAndIsReadAgain()
    {
        Fixture fixture(u"ab"_s, "PlayModel=1\n");
        fixture.start();
        fixture.addVideo(u"c"_s);
        std::optional<VideoRows::Writer> writer(fixture.home.databaseFile());

        fixture.distributedCenter.post(u"UpdateVideoList"_s);
        fixture.endItem();
        QCOMPARE(Fixture::playing(), u"b"_s);
        writer.reset();
        QTest::qWait(1200);
        fixture.endItem();
        QCOMPARE(Fixture::playing(), u"c"_s);
    }

    void libraryLockedAtTheStart_isPlayedAfterwards()
    {
        Fixture fixture;
        std::optional<VideoRows::Writer> writer(fixture.home.databaseFile());
        fixture.start();
        QCOMPARE(Fixture::playing(), u"nothing"_s);
        writer.reset();
        QTRY_COMPARE(Fixture::playing(), u"a"_s);
    }

    void playerWithoutAnItem_comesBack_data()
    {
        QTest::addColumn<QString>("by");
        for (const auto* by : {"choosing the current video",
                 "playing",
                 "an announcement",
                 "opening",
                 "another play order",
                 "itself"})
            QTest::newRow(by) << by;
    }

    void playerWithoutAnItem_comesBack()
    {
        QFETCH(QString, by);
        Fixture fixture(u"ab"_s, "PlayModel=1\n");
        fixture.start();
        QFile::remove(fixture.file(u"a"_s));
        QFile::remove(fixture.file(u"b"_s));
        fixture.endItem();
        QCOMPARE(Fixture::playing(), u"nothing"_s);
        fixture.endItem(); // nothing to restart either
        QCOMPARE(VideoRows::signs(fixture.home.databaseFile()), strings({"a", "b"}));

        TemporaryHome::writeFile(fixture.file(u"a"_s), "");
        if (by == u"choosing the current video")
            fixture.preferences->setPlayingVideoSign(fixture.sign());
        else if (by == u"playing")
            fixture.preferences->setIsPlaying(true);
        else if (by == u"an announcement")
            fixture.distributedCenter.post(u"UpdateVideoList"_s);
        else if (by == u"opening")
            fixture.preferences->setIsOpenPlayer(true);
        else if (by == u"another play order")
            fixture.preferences->setPlayModel(2);
        if (by == u"itself")
            QTRY_VERIFY(Recording::currentItem());
        QCOMPARE(Fixture::playing(), u"a"_s);
        QCOMPARE(fixture.sign(), u"a"_s);
    }

    void emptyLibrary_playsTheFirstVideoThatComes()
    {
        Fixture fixture{QString()};
        fixture.start();
        fixture.endItem();
        fixture.preferences->setPlayModel(2);
        fixture.endItem();
        QCOMPARE(Fixture::playing(), u"nothing"_s);
        QCOMPARE(fixture.sign(), u"none"_s);

        fixture.addVideo(u"a"_s);
        fixture.preferences->setPlayingVideoSign(u"a"_s);
        QCOMPARE(Fixture::playing(), u"a"_s);
    }

    void closedWallpaper_staysClosedWhenAFileReturns()
    {
        Fixture fixture(u"a"_s);
        QFile::remove(fixture.file(u"a"_s));
        fixture.start();
        fixture.preferences->setIsOpenPlayer(false);
        Recording::take();

        TemporaryHome::writeFile(fixture.file(u"a"_s), "");
        fixture.distributedCenter.post(u"UpdateVideoList"_s);
        QTest::qWait(3500);
        QCOMPARE(Recording::take(), QStringList());
    }

    void failedItemThatIsRepeated_restsUntilItsFileChanges()
    {
        Fixture fixture(u"ab"_s);
        fixture.start();
        fail();
        QCOMPARE(Recording::take(), strings({"item seek 0"}));
        QTest::qWait(3500); // one look at the unchanged file
        QCOMPARE(Recording::take(), QStringList());

        QVERIFY(QFile::resize(fixture.file(u"a"_s), 100)); // repaired in place
        QTRY_COMPARE(Recording::lines(), strings({"item a.mp4"}));
    }

    void failedItem_isSkippedLikeAFinishedOne()
    {
        Fixture fixture(u"abc"_s, "PlayModel=1\n");
        fixture.start();
        fail();
        QCOMPARE(Fixture::playing(), u"b"_s);
        fixture.endItem();
        QCOMPARE(Fixture::playing(), u"c"_s);
        // Failures with successes in between are not a reason to stop trying.
        for (const auto* next : {"a", "b", "c"}) {
            fail();
            QCOMPARE(Fixture::playing(), QLatin1String(next));
            fixture.endItem();
            fixture.endItem();
            fixture.endItem();
        }
    }

    void failedItemInRandomOrder_isNotDrawnAgainBeforeTheOthers()
    {
        Fixture fixture(u"ab"_s, "PlayModel=2\nCurrentVideoSign=a\n");
        fixture.start();
        for (int i = 0; i < 30; ++i) { // among them draws of the broken one twice in a row
            if (Fixture::playing() == u"a")
                fail();
            QCOMPARE(Fixture::playing(), u"b"_s);
            fixture.endItem();
        }
    }

    void onlyTheCurrentItemsStatus_counts()
    {
        Fixture fixture(u"abc"_s, "PlayModel=1\n");
        fixture.start();
        auto* const old = Recording::currentItem();
        fixture.endItem();
        Q_EMIT old->statusChanged(PlayerItem::Status::Failed);
        QCOMPARE(Fixture::playing(), u"b"_s);
    }

    void whenEveryItemFails_thePlayerStopsTrying()
    {
        Fixture fixture(u"ab"_s, "PlayModel=1\n");
        fixture.start();
        fail();
        fail();
        QCOMPARE(Fixture::playing(), u"nothing"_s);

        // Whoever opens or chooses gets another try.
        fixture.preferences->setPlayingVideoSign(u"a"_s);
        QCOMPARE(Fixture::playing(), u"a"_s);
    }

    void videoThatEndedTheHelper_isLeftOutUntilItIsChosen()
    {
        Fixture fixture(u"abc"_s, "PlayModel=1\nCurrentVideoSign=b\n");
        fixture.start();
        QCOMPARE(Fixture::playing(), u"b"_s);

        // The helper dies here. The next one:
        Fixture next(u"abc"_s, "PlayModel=1\nCurrentVideoSign=b\n");
        QFile::copy(fixture.recordFile(), next.recordFile());
        next.start();
        QString played = Fixture::playing();
        for (int i = 0; i < 3; ++i) {
            next.endItem();
            played += Fixture::playing();
        }
        QCOMPARE(played, u"caca"_s);
        next.preferences->setPlayingVideoSign(u"b"_s);
        QCOMPARE(Fixture::playing(), u"b"_s);
        next.endItem();

        // And the one after that, which was not killed.
        Fixture last(u"abc"_s, "PlayModel=1\nCurrentVideoSign=b\n");
        QFile::copy(next.recordFile(), last.recordFile());
        last.start();
        QCOMPARE(Fixture::playing(), u"b"_s);
    }

    void videoThatPlaysForAWhileOrFails_isNotSuspected_data()
    {
        QTest::addColumn<QString>("what");
        for (const auto* what : {"ends", "fails", "plays for five seconds"})
            QTest::newRow(what) << what;
    }

    void videoThatPlaysForAWhileOrFails_isNotSuspected()
    {
        QFETCH(QString, what);
        Fixture fixture(u"a"_s);
        fixture.start();
        QVERIFY(OpeningRecord(fixture.recordFile()).takeUnfinished());

        Fixture other(u"a"_s);
        other.start();
        if (what == u"ends")
            other.endItem();
        else if (what == u"fails")
            fail();
        else
            Recording::setCurrentItemStatus(PlayerItem::Status::ReadyToPlay);
        QTest::qWait(what == u"plays for five seconds" ? 5300 : 0);
        QVERIFY(!OpeningRecord(other.recordFile()).takeUnfinished());
    }

    void damagedRecord_suspectsNobody_data()
    {
        QTest::addColumn<QByteArray>("record");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("cut off") << QByteArray("{\"opening\":\"a\",\"susp");
        QTest::newRow("of other types") << QByteArray("{\"opening\":[1],\"suspects\":\"a\"}");
    }

    void damagedRecord_suspectsNobody()
    {
        QFETCH(QByteArray, record);
        Fixture fixture(u"a"_s);
        TemporaryHome::writeFile(fixture.recordFile(), record);
        fixture.start();
        QCOMPARE(Fixture::playing(), u"a"_s);
    }
};

QTEST_GUILESS_MAIN(VideoPlayerManagerRecoveryTest)
#include "VideoPlayerManagerRecoveryTest.moc"
