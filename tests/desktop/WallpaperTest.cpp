#include "desktop/HelperProcess.h"
#include "desktop/VirtualDesktop.h"
#include "support/TestVideos.h"
#include "support/VideoRows.h"

#include <QElapsedTimer>
#include <QTest>

namespace {

const auto signKey = QStringLiteral("CurrentVideoSign");
const auto openKey = QStringLiteral("IsOpenPlayer");
const auto playingKey = QStringLiteral("isPlaying");
const auto playModelKey = QStringLiteral("PlayModel");

} // namespace

/// What a person sees who sets things with another program. Judged by the pixels of the root
/// window and by the files.
class WallpaperTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_desktop.startWindowManager(); }
    void cleanup() { m_desktop.killWindowManager(); }

    void chosenVideo_isShownAndSwitchesOn()
    {
        HelperProcess helper(m_desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"));
        helper.addVideo(QStringLiteral("g"), QStringLiteral("lime"));
        helper.start();
        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("red"));
        QTRY_COMPARE(helper.home().suiteValue(signKey), QStringLiteral("r"));

        helper.home().writeSuiteValue(playingKey, QStringLiteral("false"));
        helper.home().writeSuiteValue(openKey, QStringLiteral("false"));
        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("black")); // openbox's bare root
        helper.home().writeSuiteValue(signKey, QStringLiteral("g"));

        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("lime"));
        QTRY_COMPARE(helper.home().suiteValue(openKey), QStringLiteral("true"));
        QTRY_COMPARE(helper.home().suiteValue(playingKey), QStringLiteral("true"));
    }

    void chosenVideoWhoseFileIsGone_losesItsRowAndChangesNothing()
    {
        HelperProcess helper(m_desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"));
        helper.addVideo(QStringLiteral("g"), QStringLiteral("lime"));
        helper.start();
        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("red"));

        QFile::remove(helper.videoFile(QStringLiteral("g")));
        helper.home().writeSuiteValue(signKey, QStringLiteral("g"));

        QTRY_COMPARE(
            VideoRows::signs(helper.home().databaseFile()), QStringList{QStringLiteral("r")});
        QTRY_VERIFY(helper.lines().contains(u"delete g true"));
        QCOMPARE(m_desktop.leftColour(), QStringLiteral("red"));
    }

    void list_walksAndWrapsAndFollowsTheLibrary()
    {
        HelperProcess helper(m_desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"), 0.5);
        helper.addVideo(QStringLiteral("g"), QStringLiteral("lime"), 0.5);
        helper.home().writeSuiteValue(playModelKey, QStringLiteral("1"));
        helper.start();
        for (const auto* colour : {"red", "lime", "red"})
            QTRY_COMPARE(m_desktop.leftColour(), QLatin1String(colour));

        helper.addVideo(QStringLiteral("b"), QStringLiteral("blue"), 0.5);
        helper.announceLibrary();

        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("blue"));
        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("red"));
        QTRY_COMPARE(helper.home().suiteValue(signKey), QStringLiteral("r"));
    }

    void pause_standsStillAndPlayGoesOn()
    {
        HelperProcess helper(m_desktop);
        // Red for the first second, then lime.
        const auto file = helper.videoFile(QStringLiteral("x"));
        TestVideos::make(file,
            QStringLiteral("-filter_complex color=c=red:s=1280x720:r=30:d=1[a];"
                           "color=c=lime:s=1280x720:r=30:d=30[b];[a][b]concat,format=yuv420p "
                           "-c:v libx264 -preset ultrafast")
                .split(u' '));
        helper.addRow(QStringLiteral("x"), file);
        helper.start();
        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("red"));
        helper.process().waitForReadyRead(0);

        helper.home().writeSuiteValue(openKey, QStringLiteral("false"));
        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("black"));
        helper.home().writeSuiteValue(openKey, QStringLiteral("true")); // begins again
        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("red"));
        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("lime"));
        helper.home().writeSuiteValue(playingKey, QStringLiteral("false"));
        QTest::qWait(1100); // the helper looks once a second
        helper.home().writeSuiteValue(playingKey, QStringLiteral("true"));
        QTest::qWait(1100);
        QCOMPARE(m_desktop.leftColour(), QStringLiteral("lime"));
    }

    void repeatedVideo_showsNothingElseAtTheSeam()
    {
        HelperProcess helper(m_desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"), 0.3);
        helper.start();
        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("red"));

        QElapsedTimer watched;
        watched.start();
        while (watched.elapsed() < 3000) // ten seams
            QCOMPARE(m_desktop.leftColour(), QStringLiteral("red"));
    }

    void badFiles_areSkipped_data()
    {
        QTest::addColumn<QString>("kind");
        for (const auto* kind : {"text",
                 "playlist",
                 "cut off",
                 "cut off after its head",
                 "empty",
                 "folder",
                 "sound only"})
            QTest::newRow(kind) << kind;
    }

    void badFiles_areSkipped()
    {
        QFETCH(QString, kind);
        HelperProcess helper(m_desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"), 0.5);
        const auto file = helper.home().path() + QStringLiteral("/bad file ü.mp4");
        makeBadFile(file, kind, helper.videoFile(QStringLiteral("r")));
        helper.addRow(QStringLiteral("bad"), file);
        helper.addVideo(QStringLiteral("g"), QStringLiteral("lime"), 0.5);
        helper.home().writeSuiteValue(playModelKey, QStringLiteral("1"));
        helper.start();

        for (const auto* colour : {"red", "lime", "red", "lime"})
            QTRY_COMPARE(m_desktop.leftColour(), QLatin1String(colour));
        QVERIFY(VideoRows::signs(helper.home().databaseFile()).contains(QStringLiteral("bad")));
    }

    void libraryOfBadFilesOnly_costsNothing_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("text") << "text";
        QTest::newRow("cut off after its head") << "cut off after its head";
    }

    void libraryOfBadFilesOnly_costsNothing()
    {
        QFETCH(QString, kind);
        for (const auto* playModel : {"0", "1"}) {
            HelperProcess helper(m_desktop);
            const auto good = helper.home().path() + QStringLiteral("/good.mp4");
            TestVideos::makePlain(good, QStringLiteral("red"));
            for (const auto* sign : {"x", "y"}) {
                makeBadFile(helper.videoFile(QLatin1String(sign)), kind, good);
                helper.addRow(QLatin1String(sign), helper.videoFile(QLatin1String(sign)));
            }
            helper.home().writeSuiteValue(playModelKey, QLatin1String(playModel));
            helper.start();
            QTRY_VERIFY(!helper.home().suiteValue(signKey).isEmpty());
            QTest::qWait(1000); // until it has given up

            const auto before = helper.processorSeconds();
            QTest::qWait(2000);
            const auto seconds = helper.processorSeconds() - before;
            QVERIFY2(seconds < 0.4, qPrintable(QString::number(seconds))); // a fifth of a core
        }
    }

    void clicks_areWrittenDown()
    {
        HelperProcess helper(m_desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"));
        helper.start();
        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("red"));

        m_desktop.moveAndClick({300, 300});

        QTRY_COMPARE(helper.lines().mid(1),
            (QStringList{
                QStringLiteral("mouse down"), QStringLiteral("tapVideoPlayerViewAction")}));
    }

    void pictureComesBack_whereAnotherWindowWas()
    {
        HelperProcess helper(m_desktop);
        helper.addVideo(QStringLiteral("r"), QStringLiteral("red"), 60);
        helper.start();
        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("red"));
        helper.home().writeSuiteValue(playingKey, QStringLiteral("false"));
        QTest::qWait(1100); // paused: no new picture comes by itself

        const auto window = m_desktop.openWindow(VirtualDesktop::WindowKind::Ordinary, Qt::blue);
        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("blue"));
        m_desktop.closeWindow(window);

        QTRY_COMPARE(m_desktop.leftColour(), QStringLiteral("red"));
    }

private:
    static void makeBadFile(const QString& file, const QString& kind, const QString& good)
    {
        if (kind == u"text") {
            TemporaryHome::writeFile(file, QByteArray("I am not a video.\n").repeated(1000));
        } else if (kind == u"playlist") {
            TemporaryHome::writeFile(file, "#EXTM3U\n" + good.toUtf8() + "\n/etc/passwd\n");
        } else if (kind == u"cut off") {
            TemporaryHome::writeFile(file, TemporaryHome::contents(good).chopped(600));
        } else if (kind == u"cut off after its head") {
            TestVideos::make(file,
                {QStringLiteral("-i"),
                    good,
                    QStringLiteral("-c"),
                    QStringLiteral("copy"),
                    QStringLiteral("-movflags"),
                    QStringLiteral("+faststart")});
            const auto whole = TemporaryHome::contents(file);
            TemporaryHome::writeFile(file, whole.left(whole.indexOf("mdat") + 4));
        } else if (kind == u"empty") {
            TemporaryHome::writeFile(file, "");
        } else if (kind == u"folder") {
            QDir().mkpath(file);
            QFile::copy(good, file + QStringLiteral("/inside.mp4"));
        } else if (kind == u"sound only") {
            TestVideos::make(file,
                {QStringLiteral("-f"),
                    QStringLiteral("lavfi"),
                    QStringLiteral("-i"),
                    QStringLiteral("sine=d=0.5"),
                    QStringLiteral("-c:a"),
                    QStringLiteral("aac")});
        }
    }

    VirtualDesktop m_desktop;
};

QTEST_GUILESS_MAIN(WallpaperTest)
#include "WallpaperTest.moc"
