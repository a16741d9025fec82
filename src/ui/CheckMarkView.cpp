#include "ui/CheckMarkView.h"

#include <QPainter>

void CheckMarkView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal side = std::min(width(), height());
    painter.translate(QRectF(rect()).center() - QPointF(side / 2, side / 2));
    painter.scale(side, side);

    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Active, QPalette::Highlight));
    painter.drawEllipse(QRectF(0.02, 0.02, 0.96, 0.96)); // its soft edge lies inside, too
    painter.setPen(QPen(palette().color(QPalette::Active, QPalette::HighlightedText),
        0.09,
        Qt::SolidLine,
        Qt::RoundCap,
        Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(QPolygonF{{0.29, 0.52}, {0.44, 0.67}, {0.72, 0.36}});
}
