#include "import/VideoProbe.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
}

using namespace Qt::StringLiterals;

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

/// The stream is shown turned by 90 degrees, to either side.
bool isTurnedOver(const AVStream& stream)
{
    std::size_t size = 0;
    const auto* data = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    std::array<int32_t, 9> matrix{};
    if (!data || size < sizeof matrix)
        return false;
    std::memcpy(matrix.data(), data, sizeof matrix);
    const auto degrees = std::abs(av_display_rotation_get(matrix.data())); // up to 180
    return degrees > 45 && degrees < 135;
}

/// The size in pixels of a screen, which are square. As in the player, pixels of another shape make
/// the picture wider or higher, never smaller.
std::pair<qint64, qint64> seenSize(AVFormatContext& format, AVStream& stream)
{
    qint64 width = stream.codecpar->width;
    qint64 height = stream.codecpar->height;
    const auto shape = av_guess_sample_aspect_ratio(&format, &stream, nullptr);
    if (shape.num > shape.den && shape.den > 0)
        width = av_rescale(width, shape.num, shape.den);
    else if (shape.den > shape.num && shape.num > 0)
        height = av_rescale(height, shape.den, shape.num);
    return isTurnedOver(stream) ? std::pair(height, width) : std::pair(width, height);
}

} // namespace

std::variant<VideoFacts, ProbeFailure> probeVideo(
    const QString& path, const std::function<void(qint64 bytes)>& progress)
{
    const QFileInfo information(path);
    if (!information.exists())
        return ProbeFailure{u"no such file"_s};
    if (!information.isFile()) // a pipe would be waited for without end
        return ProbeFailure{u"not a regular file"_s};
    if (!information.isReadable())
        return ProbeFailure{u"cannot be read"_s};

    av_log_set_level(AV_LOG_QUIET);
    AVFormatContext* opened = nullptr;
    const auto name = QFile::encodeName(u"file:"_s + information.absoluteFilePath());
    if (const int error = avformat_open_input(&opened, name.constData(), nullptr, nullptr);
        error < 0)
        return ProbeFailure{u"not a video (%1)"_s.arg(errorText(error))};
    const Format format(opened);
    if (const int error = avformat_find_stream_info(format.get(), nullptr); error < 0)
        return ProbeFailure{u"not a video (%1)"_s.arg(errorText(error))};

    const int best = av_find_best_stream(format.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (best < 0 || (format->streams[best]->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0)
        return ProbeFailure{u"has no video track"_s};
    auto& stream = *format->streams[best];
    const auto& codec = *stream.codecpar;
    if (codec.width <= 0 || codec.height <= 0)
        return ProbeFailure{u"has a video track without a picture size"_s};
    if (!avcodec_find_decoder(codec.codec_id))
        return ProbeFailure{u"is in a format that cannot be decoded here"_s};

    VideoFacts facts;
    const auto* title = av_dict_get(format->metadata, "title", nullptr, 0);
    facts.title = title ? QString::fromUtf8(title->value).simplified() : QString();
    if (facts.title.isEmpty())
        facts.title = information.completeBaseName();
    if (format->duration > 0)
        facts.seconds = std::max<qint64>(1, (format->duration + AV_TIME_BASE / 2) / AV_TIME_BASE);
    facts.bytes = information.size();
    std::tie(facts.width, facts.height) = seenSize(*format, stream);
    facts.framesPerSecond = rounded(stream.avg_frame_rate);
    facts.bitsPerSecond = format->bit_rate;
    facts.hasSound = av_find_best_stream(format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0) >= 0;

    const auto sign = contentSign(path, progress);
    if (!sign)
        return ProbeFailure{u"cannot be read"_s};
    facts.sign = *sign;
    return facts;
}
