#include "player/ManagerFixture.h"

#include <QDir>
#include <QTest>

#include <algorithm>

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
        QCOMPARE(Fixture::took(), QString("window 1 level 18; window 1 back; player play"));
        fixture.preferences->setIsOpenPlayer(false);
        QCOMPARE(Fixture::took(), QString("player pause; window 1 out"));
        fixture.preferences->setIsOpenPlayer(true);
        QCOMPARE(Fixture::took(),
            QString("window 1 level 18; window 1 back; item a.mp4; window 1 level 18; "
                    "window 1 back; player play"));
        fixture.preferences->setVolume(0.75F);
        fixture.preferences->setMute(true);
        QCOMPARE(Fixture::took(), QString("player volume 0.75; player muted 1"));
    }

    void chosenSign_playsThatVideo()
    {
        Fixture fixture;
        fixture.start();

        fixture.home.writeSuiteValue(u"CurrentVideoSign"_s, u"b"_s);
        fixture.poll();

        QCOMPARE(Fixture::took(),
            QString("player pause; window 1 level 18; window 1 back; item b.mp4; "
                    "window 1 level 18; window 1 back; player play"));
        fixture.preferences->setPlayingVideoSign(u"b"_s);
        QCOMPARE(Recording::take(), QStringList()); // it plays already
    }

    void chosenSignWithoutAFile_deletesTheRowAndPlaysOn()
    {
        Fixture fixture;
        fixture.start();
        QFile::remove(fixture.file(u"b"_s));

        fixture.preferences->setPlayingVideoSign(u"b"_s);

        QCOMPARE(VideoRows::signs(fixture.home.databaseFile()), strings({"a", "c"}));
        QCOMPARE(Recording::take(), QStringList());
        QCOMPARE(Fixture::playing(), u"a"_s);
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
        for (const bool isSetLater : {false, true}) {
            Fixture fixture(u"abc"_s, isSetLater ? QByteArray() : "PlayModel=" + playModel + '\n');
            fixture.start();
            if (isSetLater)
                fixture.preferences->setPlayModel(playModel.toInt());
            QString played = Fixture::playing();
            for (int i = 0; i < 4; ++i) {
                fixture.endItem();
                played += Fixture::playing();
                QCOMPARE(fixture.sign(), played.right(1));
            }
            QTEST(played, "played");
        }
    }

    void endOfAnotherPlayersItem_changesNothing()
    {
        Fixture fixture(u"ab"_s, "PlayModel=1\n");
        fixture.start();
        PlayerItem another(QUrl(u"file:///another.mp4"_s));
        fixture.end(&another);
        QCOMPARE(Fixture::playing(), u"a"_s);
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
        const auto all = u"abcdefgh"_s;
        Fixture fixture(all, "PlayModel=2\nCurrentVideoSign=d\n");
        fixture.start();
        QCOMPARE(Fixture::playing(), u"d"_s);

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

    void playOrderChange_makesANewListForTheNextEnd()
    {
        Fixture fixture(u"a"_s);
        fixture.start();
        fixture.addVideo(u"n"_s);

        fixture.preferences->setPlayModel(1);
        QCOMPARE(Recording::take(), QStringList());
        fixture.endItem();
        QCOMPARE(Fixture::playing(), u"n"_s);
    }

    void choiceOfAnotherProcess_isAdoptedAtTheEndOfAnItem()
    {
        Fixture fixture(u"abc"_s, "PlayModel=1\n");
        fixture.start();
        fixture.home.writeSuiteValue(u"CurrentVideoSign"_s, u"c"_s);

        fixture.endItem(); // before the next poll

        QCOMPARE(Fixture::playing(), u"c"_s);
        QCOMPARE(fixture.sign(), u"c"_s);
        QCOMPARE(fixture.home.suiteValue(u"CurrentVideoSign"_s), u"c"_s);
    }

    void announcedLibrary_isReadOnceForABurst()
    {
        Fixture fixture(u"a"_s, "PlayModel=1\n");
        fixture.start();
        const auto announce = [&] { fixture.distributedCenter.post(u"UpdateVideoList"_s); };
        fixture.addVideo(u"n"_s);
        announce();
        QCOMPARE(Recording::take(), QStringList()); // what plays is not disturbed
        fixture.addVideo(u"m"_s);
        announce();
        announce();

        fixture.endItem();
        QCOMPARE(Fixture::playing(), u"n"_s);
        fixture.endItem();
        QCOMPARE(Fixture::playing(), u"a"_s); // the first announcement's list
        QTest::qWait(300);
        fixture.endItem();
        fixture.endItem();
        QCOMPARE(Fixture::playing(), u"m"_s); // the last one's
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
        Fixture fixture(u"a"_s, "PlayModel=1\n");
        fixture.addRow(u"x"_s, url);
        fixture.addVideo(u"c"_s);
        fixture.start();

        fixture.endItem();

        QCOMPARE(Fixture::playing(), u"c"_s);
        QCOMPARE(fixture.sign(), u"c"_s);
        QVERIFY(VideoRows::signs(fixture.home.databaseFile()).contains(u"x"_s));
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
        TemporaryHome::writeFile(fixture.home.path() + u"/映画 100%#.mp4"_s, "");
        fixture.addRow(u"x"_s, url.replace(u"%1"_s, fixture.home.path()));

        fixture.start();

        QVERIFY(Recording::currentItem());
        QCOMPARE(Recording::currentItem()->url().toLocalFile(),
            fixture.home.path() + u"/映画 100%#.mp4"_s);
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
        fixture.distributedCenter.post(u"UpdateVideoList"_s);
        Q_EMIT fixture.workspace.activeSpaceDidChange();

        QCOMPARE(Recording::take(), QStringList());
    }
};

QTEST_GUILESS_MAIN(VideoPlayerManagerPlaybackTest)
#include "VideoPlayerManagerPlaybackTest.moc"
