#pragma once

#include <QColor>
#include <QPainterPath>

class QPainter;

/// A background that a button paints for itself instead of the style's. Lengths are in logical
/// pixels; colours that are not valid paint nothing.
struct ButtonLayer {
    QColor backgroundColor;
    qreal cornerRadius = 0;
    qreal borderWidth = 0; ///< lies inside the bounds
    QColor borderColor;
    bool masksToBounds = false; ///< what lies on it ends at its rounded corners, too

    void paint(QPainter& painter, const QRectF& bounds) const;
    QPainterPath outline(const QRectF& bounds) const;
};

/// The nearest rectangle whose edges lie between the pixels of what is painted on: at 150 % the
/// edges of every other logical pixel are in the middle of a real one, and would look blurred.
QRectF alignedToPixels(const QRectF& rectangle, const QPainter& painter);
