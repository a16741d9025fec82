#include "menu/HelperImage.h"

#include <QColor>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

using namespace Qt::StringLiterals;

namespace {

/// Of a luminance between those of light and of dark panels.
constexpr QColor midTone(0x35, 0x84, 0xe4);

/// A screen with its foot, and the sign for playing cut out of it.
QPainterPath mark(int size)
{
    constexpr qreal grid = 16;
    const auto at = [&](int line) { return qreal(qRound(line * size / grid)); };
    const auto box = [&](int left, int top, int right, int bottom) {
        return QRectF(QPointF(at(left), at(top)), QPointF(at(right), at(bottom)));
    };
    const auto screen = box(1, 1, 15, 12);
    QPainterPath path; // whose parts within others are holes
    path.addRoundedRect(screen, at(2), at(2));
    path.moveTo(at(6), at(3));
    path.lineTo(at(11), screen.center().y());
    path.lineTo(at(6), screen.top() + screen.bottom() - at(3));
    path.closeSubpath();
    path.addRect(box(5, 13, 11, 15));
    return path;
}

/// As the attribute "d" of an SVG path.
QString pathData(const QPainterPath& path)
{
    QString data;
    for (int i = 0; i < path.elementCount(); ++i) {
        const auto element = path.elementAt(i);
        if (element.isMoveTo())
            data += u'M';
        else if (element.isLineTo())
            data += u'L';
        else if (element.isCurveTo())
            data += u'C';
        data += u"%1 %2 "_s.arg(element.x).arg(element.y);
    }
    return data;
}

QImage transparent(int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

} // namespace

QImage HelperImage::statusBarImage(int size)
{
    auto image = transparent(size);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(mark(size), midTone);
    return image;
}

QByteArray HelperImage::symbolicImage()
{
    constexpr int size = 16;
    // GNOME's panels give every path the colour; KDE's do so by this style and this class.
    return uR"(<svg xmlns="http://www.w3.org/2000/svg" width="%1" height="%1" viewBox="0 0 %1 %1">
<style id="current-color-scheme" type="text/css">.ColorScheme-Text { color: %2 }</style>
<path class="ColorScheme-Text" fill="currentColor" fill-rule="evenodd" d="%3"/>
</svg>
)"_s.arg(size)
        .arg(midTone.name(), pathData(mark(size)))
        .toUtf8();
}

QImage HelperImage::applicationImage(int size)
{
    auto image = transparent(size);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient night(0, 0, 0, size);
    night.setColorAt(0, QColor(0x14, 0x1c, 0x52));
    night.setColorAt(1, QColor(0x2f, 0x6f, 0xed));
    painter.setPen(Qt::NoPen);
    painter.setBrush(night);
    painter.drawRoundedRect(QRectF(0, 0, size, size), size / 5.0, size / 5.0);

    const int inner = qRound(size * 0.75);
    const int margin = (size - inner) / 2; // whole, so that edges stay between pixels
    painter.translate(margin, margin);
    QLinearGradient light(0, 0, inner, inner);
    light.setColorAt(0, QColor(0x3d, 0xf0, 0xb0));
    light.setColorAt(1, QColor(0xe8, 0xf4, 0xff));
    painter.fillPath(mark(inner), light);
    return image;
}
