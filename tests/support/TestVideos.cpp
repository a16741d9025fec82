#include "support/TestVideos.h"

#include <QProcess>

namespace {

// Keeps plain colours what they are: HD video is taken as BT.709 when it does not say.
const auto colours = QStringLiteral("scale=out_color_matrix=bt709:out_range=tv,format=yuv420p");
const QStringList encoder{QStringLiteral("-c:v"),
    QStringLiteral("libx264"),
    QStringLiteral("-preset"),
    QStringLiteral("ultrafast"),
    QStringLiteral("-colorspace"),
    QStringLiteral("bt709")};

} // namespace

void TestVideos::make(const QString& path, const QStringList& arguments)
{
    QProcess ffmpeg;
    ffmpeg.setProcessChannelMode(QProcess::MergedChannels);
    ffmpeg.start(QStringLiteral("ffmpeg"),
        QStringList{QStringLiteral("-nostdin"),
            QStringLiteral("-loglevel"),
            QStringLiteral("error"),
            QStringLiteral("-y")} +
            arguments + QStringList{path});
    if (!ffmpeg.waitForFinished(60'000) || ffmpeg.exitCode() != 0)
        qFatal("ffmpeg made no video: %s", ffmpeg.readAll().constData());
}

void TestVideos::makePlain(const QString& path, const QString& colour, double seconds)
{
    const auto source = QStringLiteral("color=c=%1:s=1280x720:r=30:d=%2").arg(colour).arg(seconds);
    make(path,
        QStringList{QStringLiteral("-f"),
            QStringLiteral("lavfi"),
            QStringLiteral("-i"),
            source,
            QStringLiteral("-vf"),
            colours} +
            encoder);
}

void TestVideos::makeHalves(const QString& path, const QString& left, const QString& right)
{
    const auto source = QStringLiteral("color=c=%1:s=640x720:r=30:d=2[l];"
                                       "color=c=%2:s=640x720:r=30:d=2[r];[l][r]hstack,%3")
                            .arg(left, right, colours);
    make(path, QStringList{QStringLiteral("-filter_complex"), source} + encoder);
}

void TestVideos::makeSequence(const QString& path, double seconds)
{
    const auto source = QStringLiteral("color=c=red:s=1280x720:r=30:d=%1[a];"
                                       "color=c=lime:s=1280x720:r=30:d=%1[b];[a][b]concat,%2")
                            .arg(seconds)
                            .arg(colours);
    make(path, QStringList{QStringLiteral("-filter_complex"), source} + encoder);
}
