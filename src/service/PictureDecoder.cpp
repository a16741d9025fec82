#include "service/PictureDecoder.h"

#include <QBuffer>
#include <QImageReader>
#include <QList>
#include <QLoggingCategory>
#include <QtEndian>

#include <memory>
#include <png.h>

namespace {

bool take(const QSize& size, qint64& memoryLeft)
{
    constexpr qint64 bytesPerPixel = 4;
    if (size.isEmpty() || size.height() > memoryLeft / bytesPerPixel / size.width())
        return false;
    memoryLeft -= bytesPerPixel * size.width() * size.height();
    return true;
}

/// The file with the chunks that pictures are made of (PNG 1.2, 4.1) and no others: texts, for one,
/// may be packed and unpack to gigabytes.
QByteArray withoutAncillaryChunks(const QByteArray& file)
{
    constexpr qsizetype signatureSize = 8;
    constexpr qsizetype overhead = 12; // length, type and checksum
    QByteArray kept = file.left(signatureSize);
    for (auto at = signatureSize; at + overhead <= file.size();) {
        const qsizetype length = qFromBigEndian<quint32>(file.constData() + at);
        if (length > file.size() - at - overhead)
            break;
        const auto type = QByteArrayView(file).sliced(at + 4, 4);
        const bool isCritical = type[0] >= 'A' && type[0] <= 'Z';
        if (isCritical || type == QByteArrayView("tRNS"))
            kept += QByteArrayView(file).sliced(at, length + overhead);
        at += length + overhead;
    }
    return kept;
}

/// Qt's own reader has libpng write its complaints to standard error.
QImage decodePng(const QByteArray& file, qint64& memoryLeft)
{
    const auto data = withoutAncillaryChunks(file);
    png_image picture{};
    picture.version = PNG_IMAGE_VERSION;
    const std::unique_ptr<png_image, decltype(&png_image_free)> release(&picture, png_image_free);
    if (!png_image_begin_read_from_memory(
            &picture, data.constData(), static_cast<png_size_t>(data.size())))
        return {};
    const QSize size(static_cast<int>(picture.width), static_cast<int>(picture.height));
    if (!take(size, memoryLeft))
        return {};
    picture.format = PNG_FORMAT_RGBA;
    QImage image(size, QImage::Format_RGBA8888);
    if (image.isNull() ||
        !png_image_finish_read(
            &picture, nullptr, image.bits(), static_cast<int>(image.bytesPerLine()), nullptr))
        return {};
    return image;
}

/// Each layer of a progressive JPEG goes over all of the picture. Usual ones have about ten.
bool hasTooManyLayers(const QByteArray& jpeg)
{
    constexpr int limit = 64;
    return jpeg.count("\xff\xda") > limit;
}

/// Unless people ask for it (QT_LOGGING_RULES), damaged pictures are nobody's news.
void quietReaders()
{
    static const bool done = [] {
        QLoggingCategory::setFilterRules(
            QStringLiteral("qt.gui.imageio*=false\nqt.gui.icc*=false"));
        return true;
    }();
    Q_UNUSED(done)
}

} // namespace

QImage decodePicture(const QByteArray& file, qint64& memoryLeft)
{
    if (file.startsWith("\x89PNG"))
        return decodePng(file, memoryLeft);

    // Others may take any time (vector formats) or complain.
    static const QList<QByteArray> formats{"jpeg", "gif"};
    quietReaders();
    QBuffer buffer;
    buffer.setData(file);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    if (!formats.contains(reader.format()) || hasTooManyLayers(file) ||
        !take(reader.size(), memoryLeft))
        return {};
    return reader.read();
}
