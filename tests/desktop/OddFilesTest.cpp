#include "desktop/HelperProcess.h"
#include "desktop/VirtualDesktop.h"
#include "support/TestVideos.h"
#include "support/VideoRows.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const auto signKey = u"CurrentVideoSign"_s;
const auto playModelKey = u"PlayModel"_s;

void makeBadFile(const QString& file, const QString& kind, const QString& good)
{
    if (kind == u"text") {
        TemporaryHome::writeFile(file, QByteArray("I am not a video.\n").repeated(1000));
    } else if (kind == u"playlist") {
        TemporaryHome::writeFile(file, "#EXTM3U\n" + good.toUtf8() + "\n/etc/passwd\n");
    } else if (kind == u"cut off") {
        TemporaryHome::writeFile(file, TemporaryHome::contents(good).chopped(600));
    } else if (kind == u"cut off after its head") {
        TestVideos::make(
            file, {u"-i"_s, good, u"-c"_s, u"copy"_s, u"-movflags"_s, u"+faststart"_s});
        const auto whole = TemporaryHome::contents(file);
        TemporaryHome::writeFile(file, whole.left(whole.indexOf("mdat") + 4));
    } else if (kind == u"emptied") {
        QFile::copy(good, file);
    } else if (kind == u"two pictures") {
        TestVideos::make(file, {u"-i"_s, good, u"-frames:v"_s, u"2"_s});
    } else if (kind == u"empty") {
        TemporaryHome::writeFile(file, "");
    } else if (kind == u"folder") {
        QDir().mkpath(file);
        QFile::copy(good, file + u"/inside.mp4"_s);
    } else if (kind == u"sound only") {
        TestVideos::make(
            file, {u"-f"_s, u"lavfi"_s, u"-i"_s, u"sine=d=0.5"_s, u"-c:a"_s, u"aac"_s});
    }
}

} // namespace

/// Videos as people have them: turned, without an index, damaged, or not videos at all.
class OddFilesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void turnedVideos_standUpright_data()
    {
        QTest::addColumn<QString>("degrees"); // counter-clockwise, as the tool counts
        QTest::addColumn<QPoint>("red");      // upper left
        QTest::addColumn<QPoint>("lime");     // lower left
        QTest::addColumn<QPoint>("blue");     // right
        QTest::newRow("a quarter")
            << "90" << QPoint(320, 620) << QPoint(960, 620) << QPoint(640, 100);
        QTest::newRow("half") << "180" << QPoint(1180, 620) << QPoint(1180, 100)
                              << QPoint(100, 360);
        QTest::newRow("three quarters")
            << "270" << QPoint(960, 100) << QPoint(320, 100) << QPoint(640, 620);
    }

    void turnedVideos_standUpright()
    {
        QFETCH(QString, degrees);
        HelperProcess helper(*m_desktop);
        const auto straight = helper.videoFile(u"s"_s);
        const auto turned = helper.videoFile(u"t"_s);
        TestVideos::makeThirds(straight);
        TestVideos::make(turned,
            {u"-i"_s, straight, u"-c"_s, u"copy"_s, u"-metadata:s:v:0"_s, u"rotate="_s + degrees});
        helper.addRow(u"t"_s, turned);
        helper.addRow(u"s"_s, straight);
        helper.home().writeSuiteValue(playModelKey, u"1"_s);
        helper.start();

        QFETCH(QPoint, red);
        QFETCH(QPoint, lime);
        QFETCH(QPoint, blue);
        const auto shows = [this](const QPoint& first, const QPoint& second, const QPoint& third) {
            return m_desktop->colour(first) == u"red" && m_desktop->colour(second) == u"lime" &&
                   m_desktop->colour(third) == u"blue";
        };
        QTRY_VERIFY(shows(red, lime, blue));
        // The next one is not turned.
        QTRY_VERIFY(shows({100, 100}, {100, 620}, {1180, 360}));
    }

    void rawStream_isRepeated()
    {
        HelperProcess helper(*m_desktop);
        const auto file = helper.home().path() + u"/stream.h264"_s;
        TestVideos::makeSequence(file, 0.5);
        helper.addRow(u"x"_s, file);
        helper.start();
        for (const auto* colour : {"red", "lime", "red", "lime"})
            QTRY_COMPARE(m_desktop->leftColour(), QLatin1String(colour));
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
        HelperProcess helper(*m_desktop);
        helper.addVideo(u"r"_s, u"red"_s, 0.5);
        const auto file = helper.home().path() + u"/bad file ü.mp4"_s;
        makeBadFile(file, kind, helper.videoFile(u"r"_s));
        helper.addRow(u"bad"_s, file);
        helper.addVideo(u"g"_s, u"lime"_s, 0.5);
        helper.home().writeSuiteValue(playModelKey, u"1"_s);
        helper.start();

        for (const auto* colour : {"red", "lime", "red", "lime"})
            QTRY_COMPARE(m_desktop->leftColour(), QLatin1String(colour));
        QVERIFY(VideoRows::signs(helper.home().databaseFile()).contains(u"bad"_s));
    }

    void filesThatShowNothingNew_costNothing_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("playModel");
        QTest::newRow("text, repeated") << "text"
                                        << "0";
        QTest::newRow("cut off after their heads, in order") << "cut off after its head"
                                                             << "1";
        QTest::newRow("of two pictures, repeated") << "two pictures"
                                                   << "0";
        QTest::newRow("emptied while they play") << "emptied"
                                                 << "0";
    }

    void filesThatShowNothingNew_costNothing()
    {
        QFETCH(QString, kind);
        QFETCH(QString, playModel);
        HelperProcess helper(*m_desktop);
        const auto good = helper.home().path() + u"/good.mp4"_s;
        // Noise, or the player could keep the whole of it in memory.
        TestVideos::make(good,
            {u"-f"_s,
                u"lavfi"_s,
                u"-i"_s,
                u"color=c=gray:s=640x360:r=30:d=2,noise=alls=50:allf=t"_s});
        for (const auto* sign : {"x", "y"}) {
            const auto file = helper.videoFile(QLatin1String(sign));
            makeBadFile(file, kind, good);
            helper.addRow(QLatin1String(sign), file);
        }
        helper.home().writeSuiteValue(playModelKey, playModel);
        helper.start();
        QTRY_VERIFY(!helper.home().suiteValue(signKey).isEmpty());
        if (kind == u"emptied") {
            QTRY_VERIFY(m_desktop->leftColour().startsWith(u'#'));
            for (const auto* sign : {"x", "y"})
                QFile::resize(helper.videoFile(QLatin1String(sign)), 0);
        }
        // What goes round and round never gets there.
        QVERIFY(helper.comesToRest());
    }

    void brokenVideo_isBlackUntilItIsRepaired()
    {
        HelperProcess helper(*m_desktop);
        TemporaryHome::writeFile(helper.videoFile(u"x"_s), "nothing to see");
        helper.addRow(u"x"_s, helper.videoFile(u"x"_s));
        helper.start();
        QTRY_COMPARE(helper.home().suiteValue(signKey), u"x"_s);

        // A window that goes leaves no trail.
        m_desktop->cover(Qt::blue);
        QTRY_COMPARE(m_desktop->leftColour(), u"blue"_s);
        m_desktop->uncover();
        QTRY_COMPARE(m_desktop->leftColour(), u"black"_s);

        TestVideos::makePlain(helper.videoFile(u"x"_s), u"lime"_s);
        QTRY_COMPARE(m_desktop->leftColour(), u"lime"_s);
    }

    void emptyLibrary_thatIsFilledAndChosenFrom_plays()
    {
        HelperProcess helper(*m_desktop);
        helper.start();
        QTRY_COMPARE(helper.lines().size(), 1);
        helper.addVideo(u"g"_s, u"lime"_s);
        helper.home().writeSuiteValue(signKey, u"g"_s);
        QTRY_COMPARE(m_desktop->leftColour(), u"lime"_s);
    }

    void videoThatEndedTheHelper_isLeftOutAtTheNextStart()
    {
        HelperProcess helper(*m_desktop);
        helper.addVideo(u"r"_s, u"red"_s);
        helper.addVideo(u"g"_s, u"lime"_s);
        helper.start();
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);
        helper.process().kill();
        QVERIFY(helper.waitForEnd());

        helper.start();
        QTRY_COMPARE(m_desktop->leftColour(), u"lime"_s);
        const auto error = helper.process().readAllStandardError();
        QVERIFY2(error.contains("left out until it is chosen"), error.constData());
        QCOMPARE(error.count('\n'), 1);
        helper.home().writeSuiteValue(signKey, u"r"_s);
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);

        helper.process().terminate(); // in its first seconds, but as one should
        QVERIFY(helper.waitForEnd());
        QTRY_COMPARE(m_desktop->leftColour(), u"bare"_s);
        helper.start();
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);
    }

private:
    std::unique_ptr<VirtualDesktop> m_desktop = VirtualDesktop::create();
};

QTEST_GUILESS_MAIN(OddFilesTest)
#include "OddFilesTest.moc"
