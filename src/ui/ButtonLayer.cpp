#include "ui/ButtonLayer.h"

#include <QPainter>

void ButtonLayer::paint(QPainter& painter, const QRectF& bounds) const
{
    const auto outside = outline(bounds);
    if (backgroundColor.isValid())
        painter.fillPath(outside, backgroundColor);
    if (borderWidth <= 0 || !borderColor.isValid())
        return;
    // Filled and not stroked: the pen would lie half outside and be rounded to whole pixels.
    const auto width = borderWidth;
    auto inner = *this;
    inner.cornerRadius = std::max(0.0, cornerRadius - width);
    painter.fillPath(
        outside.subtracted(inner.outline(bounds.adjusted(width, width, -width, -width))),
        borderColor);
}

QPainterPath ButtonLayer::outline(const QRectF& bounds) const
{
    QPainterPath path;
    if (cornerRadius > 0)
        path.addRoundedRect(bounds, cornerRadius, cornerRadius);
    else
        path.addRect(bounds);
    return path;
}

QRectF alignedToPixels(const QRectF& rectangle, const QPainter& painter)
{
    const auto toDevice = painter.deviceTransform();
    const auto device = toDevice.mapRect(rectangle);
    const QRectF aligned(QPointF(qRound(device.left()), qRound(device.top())),
        QPointF(qRound(device.right()), qRound(device.bottom())));
    return toDevice.inverted().mapRect(aligned);
}
