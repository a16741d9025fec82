#include "Measurements.h"
#include "PictureWatcher.h"
#include "ServiceBench.h"

#include "desktop/HelperProcess.h"
#include "desktop/X11Desktop.h"
#include "platform/Recording.h"
#include "player/VideoPlayerManager.h"
#include "support/TestVideos.h"
#include "support/VideoRows.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

using namespace Measurements;

namespace {

constexpr int framesPerSecond = 30;
constexpr double watched = 10;    // seconds of playing that are measured
constexpr double clipLength = 15; // seconds

const auto playing = QStringLiteral("isPlaying");
const auto open = QStringLiteral("IsOpenPlayer");
const auto clip = QStringLiteral("clip");

void sleepFor(double seconds)
{
    QThread::msleep(static_cast<unsigned long>(seconds * 1000));
}

/// 8 Mbit/s, 1080p, H.264, with enough going on to need them.
void makeClip(const QString& path, double seconds)
{
    const auto source = QStringLiteral("testsrc2=s=1920x1080:r=%1:d=%2,noise=alls=12:allf=t")
                            .arg(framesPerSecond)
                            .arg(seconds);
    TestVideos::make(path,
        {QStringLiteral("-f"),
            QStringLiteral("lavfi"),
            QStringLiteral("-i"),
            source,
            QStringLiteral("-c:v"),
            QStringLiteral("libx264"),
            QStringLiteral("-preset"),
            QStringLiteral("veryfast"),
            QStringLiteral("-b:v"),
            QStringLiteral("8M"),
            QStringLiteral("-maxrate"),
            QStringLiteral("8M"),
            QStringLiteral("-bufsize"),
            QStringLiteral("8M"),
            QStringLiteral("-pix_fmt"),
            QStringLiteral("yuv420p")});
}

struct Playing {
    double cost;    ///< processor seconds a second
    double dropped; ///< pictures that should have come and did not, of `watched` seconds
};

/// Begins the clip again, so that the time measured has no seam in it.
void restart(HelperProcess& helper)
{
    helper.home().writeSuiteValue(open, QStringLiteral("false"));
    sleepFor(1.5);
    helper.home().writeSuiteValue(open, QStringLiteral("true"));
    sleepFor(2);
}

Playing measurePlaying(HelperProcess& helper, PictureWatcher& watcher, int monitors)
{
    const auto before = helper.processorSeconds();
    const auto pictures = watcher.watch(watched);
    return {(helper.processorSeconds() - before) / watched,
        watched * framesPerSecond - static_cast<double>(pictures.size()) / monitors};
}

double measureIdle(HelperProcess& helper)
{
    sleepFor(2);
    const auto before = helper.processorSeconds();
    sleepFor(watched);
    return 100 * (helper.processorSeconds() - before) / watched;
}

void benchPlaying(const QString& source, double decode)
{
    X11Desktop desktop({1920, 1080});
    desktop.startWindowManager();
    HelperProcess helper(desktop);
    QFile::copy(source, helper.videoFile(clip));
    helper.addRow(clip, helper.videoFile(clip));

    const auto empty = desktop.leftColour();
    QElapsedTimer sinceStart;
    sinceStart.start();
    helper.start();
    while (desktop.leftColour() == empty && sinceStart.elapsed() < 10'000)
        QThread::msleep(1);
    report(QStringLiteral("process start to first picture"),
        static_cast<double>(sinceStart.nsecsElapsed()) * 1e-9,
        0.5,
        QStringLiteral("s"));
    restart(helper);
    PictureWatcher watcher(desktop);
    const auto one = measurePlaying(helper, watcher, 1);
    report(QStringLiteral("one 1080p monitor, against bare decode"),
        one.cost / decode,
        1.35,
        QStringLiteral("x"));
    report(QStringLiteral("  pictures dropped in %1 s").arg(watched),
        std::max(0.0, std::round(one.dropped)),
        1,
        QString());
    report(QStringLiteral("memory (PSS) playing 1080p"),
        proportionalMemory(helper.process().processId()),
        140,
        QStringLiteral("MB"));

    helper.home().writeSuiteValue(playing, QStringLiteral("false"));
    report(QStringLiteral("paused"), measureIdle(helper), 0.5, QStringLiteral("% core"));
    helper.home().writeSuiteValue(open, QStringLiteral("false"));
    report(QStringLiteral("closed"), measureIdle(helper), 0.5, QStringLiteral("% core"));
}

void benchMirrored(const QString& source, double decode)
{
    X11Desktop desktop({3840, 1080});
    desktop.startWindowManager();
    desktop.setMonitors(X11Desktop::Monitors::TwoHalves);
    HelperProcess helper(desktop);
    QFile::copy(source, helper.videoFile(clip));
    helper.addRow(clip, helper.videoFile(clip));
    const auto arrangement = QStringLiteral("MonitorArrange");

    // Both in one run and one process: what counts is the difference.
    helper.home().writeSuiteValue(QStringLiteral("ScreenIndex"), QStringLiteral("0"));
    helper.home().writeSuiteValue(arrangement, QStringLiteral("2"));
    helper.start();
    sleepFor(2);
    restart(helper);
    PictureWatcher watcher(desktop);
    const auto one = measurePlaying(helper, watcher, 1);
    helper.home().writeSuiteValue(arrangement, QStringLiteral("1"));
    restart(helper);
    watcher.watch(0.1);
    const auto two = measurePlaying(helper, watcher, 2);
    report(QStringLiteral("a second, mirrored 1080p monitor, against bare decode"),
        (two.cost - one.cost) / decode,
        0.15,
        QStringLiteral("x"));
    report(QStringLiteral("  pictures dropped in %1 s").arg(watched),
        std::max(0.0, std::round(two.dropped)),
        1,
        QString());
}

void benchSeam()
{
    X11Desktop desktop({1920, 1080});
    desktop.startWindowManager();
    HelperProcess helper(desktop);
    helper.addVideo(clip, QStringLiteral("red"), 2);
    helper.start();
    sleepFor(3);

    PictureWatcher watcher(desktop);
    int others = 0;
    const auto pictures = watcher.watch(watched,
        [&](const PictureWatcher::Picture&) { others += desktop.leftColour() == u"red" ? 0 : 1; });
    double longest = 0;
    for (std::size_t i = 1; i < pictures.size(); ++i)
        longest = std::max(longest, pictures[i].seconds - pictures[i - 1].seconds);
    report(QStringLiteral("a repeated 2 s clip: pictures of another colour"), others, 0, QString());
    report(QStringLiteral("  latest picture, in frames too late"),
        longest * framesPerSecond - 1,
        1,
        QString());
}

void benchChange()
{
    X11Desktop desktop;
    desktop.startWindowManager();
    HelperProcess helper(desktop);
    helper.addVideo(QStringLiteral("r"), QStringLiteral("red"));
    helper.addVideo(QStringLiteral("g"), QStringLiteral("lime"));
    helper.start();
    sleepFor(2);
    double longest = 0;
    for (int i = 0; i < 8; ++i) {
        const bool isRed = i % 2 == 1;
        sleepFor(0.3 + 0.13 * i); // somewhere between two polls
        QElapsedTimer time;
        time.start();
        helper.home().writeSuiteValue(
            QStringLiteral("CurrentVideoSign"), isRed ? QStringLiteral("r") : QStringLiteral("g"));
        const auto colour = isRed ? QStringLiteral("red") : QStringLiteral("lime");
        while (desktop.leftColour() != colour && time.elapsed() < 10'000)
            QThread::msleep(2);
        longest = std::max(longest, static_cast<double>(time.nsecsElapsed()) * 1e-9);
    }
    report(QStringLiteral("a choice in the settings to the new picture, longest of 8"),
        longest,
        1.5,
        QStringLiteral("s"));
}

void benchLibrary()
{
    const TemporaryHome home;
    VideoRows::createTable(home.databaseFile());
    std::vector<VideoDetail> rows;
    constexpr int count = 100'000;
    for (int i = 0; i < count; ++i) {
        rows.push_back(VideoRows::row(QStringLiteral("%1").arg(i, 24, 16, QLatin1Char('0')),
            QStringLiteral("file:///home/somebody/Videos/holidays/%1.mp4").arg(i)));
    }
    VideoRows::insert(home.databaseFile(), rows);

    const Bundle bundle(home.path());
    const AppInfo info(bundle);
    const auto suite = PreferencesSuite::open(AppInfo::applicationGroupIdentifier(), home.path());
    Preferences preferences(*suite);
    preferences.setPlayingVideoSign(rows.back().sign);
    LocalVideoDBManager library(info, bundle);
    Workspace workspace;
    DistributedNotificationCenter distributedCenter;
    NotificationCenter center;
    OpeningRecord openings(home.path() + QStringLiteral("/opening.json"));
    VideoPlayerManager manager(
        preferences, library, openings, workspace, distributedCenter, center);
    for (const bool isRandom : {false, true}) {
        preferences.setPlayModel(isRandom ? 2 : 1);
        QElapsedTimer time;
        time.start();
        manager.reloadVideoList();
        report(QStringLiteral("100,000 rows rebuilt, %1").arg(isRandom ? u"random" : u"in order"),
            static_cast<double>(time.nsecsElapsed()) * 1e-9,
            0.5,
            QStringLiteral("s"));
    }
}

void benchVideo()
{
    const QTemporaryDir directory;
    const auto source = directory.filePath(QStringLiteral("clip.mp4"));
    makeClip(source, clipLength);

    const auto decode = processorSecondsOf(QStringLiteral("ffmpeg"),
                            {QStringLiteral("-nostdin"),
                                QStringLiteral("-i"),
                                source,
                                QStringLiteral("-f"),
                                QStringLiteral("null"),
                                QStringLiteral("-")}) /
                        clipLength;
    const auto mpv = processorSecondsOf(QStringLiteral("mpv"),
                         {QStringLiteral("--no-config"),
                             QStringLiteral("--vo=null"),
                             QStringLiteral("--ao=null"),
                             QStringLiteral("--hwdec=no"),
                             source}) /
                     clipLength;
    note(QStringLiteral("bare decode: ffmpeg -f null, CPU s a second"), decode, QString());
    note(QStringLiteral("bare decode in real time: mpv --vo=null, against ffmpeg"),
        mpv / decode,
        QStringLiteral("x"));

    benchPlaying(source, decode);
    benchMirrored(source, decode);
}

} // namespace

/// Measures the parts that are named, or all.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const std::vector<std::pair<QString, void (*)()>> parts{{QStringLiteral("video"), benchVideo},
        {QStringLiteral("seam"), benchSeam},
        {QStringLiteral("change"), benchChange},
        {QStringLiteral("library"), benchLibrary},
        {QStringLiteral("service"), benchService}};
    const auto wanted = QCoreApplication::arguments().mid(1);
    for (const auto& [name, measure] : parts) {
        if (wanted.isEmpty() || wanted.contains(name))
            measure();
    }
    return 0;
}
