#include "companion/VideoProbe.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace {

struct FormatCloser {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
using Format = std::unique_ptr<AVFormatContext, FormatCloser>;

QString errorText(int error)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(error, text, sizeof text);
    return QString::fromLocal8Bit(text).toLower();
}

// 96 bits: enough to tell any two videos apart, short enough to read in a list.
constexpr qsizetype signLength = 24;

std::optional<QString> contentSign(const QString& path, const std::function<void(qint64)>& progress)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QCryptographicHash hash(QCryptographicHash::Blake2b_160);
    QByteArray block(1 << 20, Qt::Uninitialized);
    for (;;) {
        const auto length = file.read(block.data(), block.size());
        if (length < 0)
            return std::nullopt;
        if (length == 0)
            return QString::fromLatin1(hash.result().toHex().left(signLength));
        hash.addData(QByteArrayView(block.constData(), length));
        if (progress)
            progress(length);
    }
}

qint64 rounded(AVRational rate)
{
    return rate.den > 0 ? std::llround(av_q2d(rate)) : 0;
}

} // namespace

QString VideoFacts::ratio() const
{
    const auto divisor = std::max<qint64>(1, std::gcd(width, height));
    return QStringLiteral("%1:%2").arg(width / divisor).arg(height / divisor);
}

std::variant<VideoFacts, ProbeFailure> probeVideo(
    const QString& path, const std::function<void(qint64 bytes)>& progress)
{
    const QFileInfo information(path);
    if (!information.exists())
        return ProbeFailure{QStringLiteral("no such file")};
    if (!information.isFile()) // a pipe would be waited for without end
        return ProbeFailure{QStringLiteral("not a regular file")};
    if (!information.isReadable())
        return ProbeFailure{QStringLiteral("cannot be read")};

    av_log_set_level(AV_LOG_QUIET);
    AVFormatContext* opened = nullptr;
    const auto name = QFile::encodeName(QStringLiteral("file:") + information.absoluteFilePath());
    if (const int error = avformat_open_input(&opened, name.constData(), nullptr, nullptr);
        error < 0)
        return ProbeFailure{QStringLiteral("not a video (%1)").arg(errorText(error))};
    const Format format(opened);
    if (const int error = avformat_find_stream_info(format.get(), nullptr); error < 0)
        return ProbeFailure{QStringLiteral("not a video (%1)").arg(errorText(error))};

    const int best = av_find_best_stream(format.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (best < 0 || (format->streams[best]->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0)
        return ProbeFailure{QStringLiteral("has no video track")};
    const auto& stream = *format->streams[best];
    const auto& codec = *stream.codecpar;
    if (codec.width <= 0 || codec.height <= 0)
        return ProbeFailure{QStringLiteral("has a video track without a picture size")};
    if (!avcodec_find_decoder(codec.codec_id))
        return ProbeFailure{QStringLiteral("is in a format that cannot be decoded here")};

    VideoFacts facts;
    const auto* title = av_dict_get(format->metadata, "title", nullptr, 0);
    facts.title = title ? QString::fromUtf8(title->value).simplified() : QString();
    if (facts.title.isEmpty())
        facts.title = information.completeBaseName();
    if (format->duration > 0)
        facts.seconds = std::max<qint64>(1, (format->duration + AV_TIME_BASE / 2) / AV_TIME_BASE);
    facts.bytes = information.size();
    facts.width = codec.width;
    facts.height = codec.height;
    facts.framesPerSecond = rounded(stream.avg_frame_rate);
    facts.bitsPerSecond = format->bit_rate;
    facts.hasSound = av_find_best_stream(format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0) >= 0;

    const auto sign = contentSign(path, progress);
    if (!sign)
        return ProbeFailure{QStringLiteral("cannot be read")};
    facts.sign = *sign;
    return facts;
}
