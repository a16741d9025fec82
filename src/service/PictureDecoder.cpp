#include "service/PictureDecoder.h"

#include <QBuffer>
#include <QImageReader>
#include <QList>
#include <QLoggingCategory>

#include <memory>
#include <png.h>

namespace {

bool fits(const QSize& size, qint64 memoryLimit)
{
    constexpr qint64 bytesPerPixel = 4;
    return !size.isEmpty() && size.height() <= memoryLimit / bytesPerPixel / size.width();
}

/// Qt's own reader has libpng write its complaints to standard error.
QImage decodePng(const QByteArray& file, qint64 memoryLimit)
{
    png_image picture{};
    picture.version = PNG_IMAGE_VERSION;
    const std::unique_ptr<png_image, decltype(&png_image_free)> release(&picture, png_image_free);
    if (!png_image_begin_read_from_memory(
            &picture, file.constData(), static_cast<png_size_t>(file.size())))
        return {};
    const QSize size(static_cast<int>(picture.width), static_cast<int>(picture.height));
    if (!fits(size, memoryLimit))
        return {};
    picture.format = PNG_FORMAT_RGBA;
    QImage image(size, QImage::Format_RGBA8888);
    if (image.isNull() ||
        !png_image_finish_read(
            &picture, nullptr, image.bits(), static_cast<int>(image.bytesPerLine()), nullptr))
        return {};
    return image;
}

/// Unless people ask for it (QT_LOGGING_RULES), damaged pictures are nobody's news.
void quietReaders()
{
    static const bool done = [] {
        QLoggingCategory::setFilterRules(QStringLiteral("qt.gui.imageio*=false"));
        return true;
    }();
    Q_UNUSED(done)
}

} // namespace

QImage decodePicture(const QByteArray& file, qint64 memoryLimit)
{
    if (file.startsWith("\x89PNG"))
        return decodePng(file, memoryLimit);

    static const QList<QByteArray> formats{"jpeg", "gif", "bmp", "webp"};
    quietReaders();
    QBuffer buffer;
    buffer.setData(file);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    if (!formats.contains(reader.format()) || !fits(reader.size(), memoryLimit))
        return {};
    return reader.read();
}
