#include "desktop/HelperProcess.h"
#include "desktop/VirtualDesktop.h"
#include "support/TestVideos.h"
#include "support/VideoRows.h"

#include <QElapsedTimer>
#include <QTest>
#include <QtEndian>

#include <algorithm>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

const auto signKey = u"CurrentVideoSign"_s;
const auto openKey = u"IsOpenPlayer"_s;
const auto playingKey = u"isPlaying"_s;
const auto volumeKey = u"Volume"_s;
const auto playModelKey = u"PlayModel"_s;

} // namespace

/// What a person sees who sets things with another program. Judged by the pixels of the
/// desktop and by the files.
class WallpaperTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void chosenVideo_isShownAndSwitchesOn()
    {
        HelperProcess helper(*m_desktop);
        helper.addVideo(u"r"_s, u"red"_s);
        helper.addVideo(u"g"_s, u"lime"_s);
        helper.start();
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);
        QTRY_COMPARE(helper.home().suiteValue(signKey), u"r"_s);

        helper.home().writeSuiteValue(playingKey, u"false"_s);
        helper.home().writeSuiteValue(openKey, u"false"_s);
        QTRY_COMPARE(m_desktop->leftColour(), u"bare"_s);
        helper.home().writeSuiteValue(signKey, u"g"_s);

        QTRY_COMPARE(m_desktop->leftColour(), u"lime"_s);
        QTRY_COMPARE(helper.home().suiteValue(openKey), u"true"_s);
        QTRY_COMPARE(helper.home().suiteValue(playingKey), u"true"_s);
    }

    void list_walksAndWrapsAndFollowsTheLibrary()
    {
        HelperProcess helper(*m_desktop);
        helper.addVideo(u"r"_s, u"red"_s, 0.5);
        helper.addVideo(u"g"_s, u"lime"_s, 0.5);
        helper.home().writeSuiteValue(playModelKey, u"1"_s);
        helper.start();
        for (const auto* colour : {"red", "lime", "red"})
            QTRY_COMPARE(m_desktop->leftColour(), QLatin1String(colour));

        helper.addVideo(u"b"_s, u"blue"_s, 0.5);
        helper.announceLibrary();

        QTRY_COMPARE(m_desktop->leftColour(), u"blue"_s);
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);
        QTRY_COMPARE(helper.home().suiteValue(signKey), u"r"_s);
    }

    void pause_standsStillAndPlayGoesOn()
    {
        HelperProcess helper(*m_desktop);
        TestVideos::makeSequence(helper.videoFile(u"x"_s), 1);
        helper.addRow(u"x"_s, helper.videoFile(u"x"_s));
        helper.start();
        for (const auto* colour : {"red", "lime", "red"})
            QTRY_COMPARE(m_desktop->leftColour(), QLatin1String(colour));

        helper.home().writeSuiteValue(playingKey, u"false"_s);
        QTest::qWait(1500); // the helper looks once a second
        const auto colour = m_desktop->leftColour();
        for (int i = 0; i < 15; ++i) {
            QCOMPARE(m_desktop->leftColour(), colour);
            QTest::qWait(100);
        }
        helper.home().writeSuiteValue(playingKey, u"true"_s);
        QTRY_VERIFY(m_desktop->leftColour() != colour);

        helper.home().writeSuiteValue(openKey, u"false"_s);
        QTRY_COMPARE(m_desktop->leftColour(), u"bare"_s);
        helper.home().writeSuiteValue(openKey, u"true"_s); // begins again
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);
    }

    void repeatedVideo_showsNothingElseAtTheSeam()
    {
        HelperProcess helper(*m_desktop);
        helper.addVideo(u"r"_s, u"red"_s, 0.3);
        helper.start();
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);

        QElapsedTimer watched;
        watched.start();
        while (watched.elapsed() < 3000) // ten seams
            QCOMPARE(m_desktop->leftColour(), u"red"_s);
    }

    void volumeAndMute_areHeard()
    {
        HelperProcess helper(*m_desktop);
        const auto file = helper.videoFile(u"x"_s);
        TestVideos::make(file,
            u"-f lavfi -i color=c=red:s=1280x720:r=30:d=0.5 -f lavfi -i sine=d=0.5 -pix_fmt yuv420p"_s
                .split(u' '));
        helper.addRow(u"x"_s, file);
        // A sound card that is a file. It takes all of a video at once, so videos are short.
        const auto sound = helper.home().path() + u"/sound"_s;
        const auto configuration = helper.home().path() + u"/asound.conf"_s;
        TemporaryHome::writeFile(configuration,
            "</usr/share/alsa/alsa.conf>\n"
            "pcm.!default { type plug slave { pcm card format S16_LE } }\n"
            "pcm.card { type file slave.pcm \"null\" format \"raw\" file \"" +
                sound.toUtf8() + "\" }\n");
        helper.setEnvironment(u"ALSA_CONFIG_PATH"_s, configuration);
        helper.home().writeSuiteValue(volumeKey, u"1"_s);
        helper.start();

        const auto loudness = [&sound] { // of the last tenth of a second
            const auto latest = TemporaryHome::contents(sound).right(8820);
            int peak = 0;
            for (qsizetype i = 0; i + 1 < latest.size(); i += 2)
                peak = std::max<int>(peak, qFromLittleEndian<qint16>(latest.constData() + i));
            return peak;
        };
        QTRY_VERIFY(loudness() > 1000);
        const auto full = loudness();
        helper.home().writeSuiteValue(volumeKey, u"0.5"_s);
        QTRY_VERIFY(std::abs(loudness() - full / 2) < full / 50);
        helper.home().writeSuiteValue(u"Mute"_s, u"true"_s);
        QTRY_COMPARE(loudness(), 0);
    }

    void clicks_areWrittenDown()
    {
        HelperProcess helper(*m_desktop);
        helper.addVideo(u"r"_s, u"red"_s);
        helper.start();
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);

        m_desktop->click({300, 300});

        QTRY_COMPARE(
            helper.lines().mid(1), (QStringList{u"mouse down"_s, u"tapVideoPlayerViewAction"_s}));
    }

    void pictureComesBack_whereAnotherWindowWas()
    {
        HelperProcess helper(*m_desktop);
        helper.addVideo(u"r"_s, u"red"_s, 60);
        helper.start();
        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);
        helper.home().writeSuiteValue(playingKey, u"false"_s);
        QTest::qWait(1100); // paused: no new picture comes by itself

        m_desktop->cover(Qt::blue);
        QTRY_COMPARE(m_desktop->leftColour(), u"blue"_s);
        m_desktop->uncover();

        QTRY_COMPARE(m_desktop->leftColour(), u"red"_s);
    }

private:
    std::unique_ptr<VirtualDesktop> m_desktop = VirtualDesktop::create();
};

QTEST_GUILESS_MAIN(WallpaperTest)
#include "WallpaperTest.moc"
