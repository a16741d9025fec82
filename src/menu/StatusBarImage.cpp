#include "menu/StatusBarImage.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace {

const auto name = QStringLiteral("fendix_statusBar");

/// On a grid of 16: the screen's frame, its foot, and the sign for playing in it.
QPainterPath mark()
{
    QPainterPath frame;
    frame.addRoundedRect(QRectF(1, 2, 14, 10), 2, 2);
    QPainterPath glass;
    glass.addRoundedRect(QRectF(2.5, 3.5, 11, 7), 1, 1);
    QPainterPath foot;
    foot.addRoundedRect(QRectF(5, 13, 6, 1.5), 0.75, 0.75);
    QPainterPath play;
    play.moveTo(6.5, 4.5);
    play.lineTo(10.5, 7);
    play.lineTo(6.5, 9.5);
    play.closeSubpath();
    return frame.subtracted(glass).united(foot).united(play);
}

} // namespace

QImage StatusBarImage::paint(int size)
{
    constexpr qreal grid = 16;
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / grid, size / grid);
    const auto path = mark();
    const QColor edge(0, 0, 0, 150);
    painter.strokePath(path, QPen(edge, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.fillPath(path, Qt::white);
    return image;
}

QIcon StatusBarImage::load(const Bundle& bundle)
{
    QIcon icon;
    for (const int size : sizes) {
        if (const auto file = bundle.pathForResource(
                QStringLiteral("%1_%2").arg(name).arg(size), QStringLiteral("png")))
            icon.addFile(*file, QSize(size, size));
    }
    if (icon.isNull()) {
        QPixmap empty(1, 1);
        empty.fill(Qt::transparent);
        return empty;
    }
    icon.setIsMask(true);
    return icon;
}
