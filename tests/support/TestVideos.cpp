#include "support/TestVideos.h"

#include <QProcess>

using namespace Qt::StringLiterals;

namespace {

// Keeps plain colours what they are: HD video is taken as BT.709 when it does not say.
const auto colours = u"scale=out_color_matrix=bt709:out_range=tv,format=yuv420p"_s;
const auto encoder = u"-c:v libx264 -preset ultrafast -colorspace bt709"_s.split(u' ');

} // namespace

void TestVideos::make(const QString& path, const QStringList& arguments)
{
    QProcess ffmpeg;
    ffmpeg.setProcessChannelMode(QProcess::MergedChannels);
    ffmpeg.start(u"ffmpeg"_s, u"-nostdin -loglevel error -y"_s.split(u' ') + arguments << path);
    if (!ffmpeg.waitForFinished(60'000) || ffmpeg.exitCode() != 0)
        qFatal("ffmpeg made no video: %s", ffmpeg.readAll().constData());
}

void TestVideos::makePlain(const QString& path, const QString& colour, double seconds)
{
    const auto source = u"color=c=%1:s=1280x720:r=30:d=%2"_s.arg(colour).arg(seconds);
    make(path, QStringList{u"-f"_s, u"lavfi"_s, u"-i"_s, source, u"-vf"_s, colours} + encoder);
}

void TestVideos::makeHalves(const QString& path, const QString& left, const QString& right)
{
    const auto source = u"color=c=%1:s=640x720:r=30:d=2[l];color=c=%2:s=640x720:r=30:d=2[r];"
                        "[l][r]hstack,%3"_s.arg(left, right, colours);
    make(path, QStringList{u"-filter_complex"_s, source} + encoder);
}

void TestVideos::makeThirds(const QString& path)
{
    const auto source =
        u"color=c=red:s=640x360:r=30:d=2[a];color=c=lime:s=640x360:r=30:d=2[b];"
        "color=c=blue:s=640x720:r=30:d=2[c];[a][b]vstack[l];[l][c]hstack,%1"_s.arg(colours);
    make(path, QStringList{u"-filter_complex"_s, source} + encoder);
}

void TestVideos::makeSequence(const QString& path, double seconds)
{
    const auto source = QStringLiteral("color=c=red:s=1280x720:r=30:d=%1[a];"
                                       "color=c=lime:s=1280x720:r=30:d=%1[b];[a][b]concat,%2")
                            .arg(seconds)
                            .arg(colours);
    make(path, QStringList{QStringLiteral("-filter_complex"), source} + encoder);
}
