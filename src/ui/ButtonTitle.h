#pragma once

#include <QColor>
#include <QFont>
#include <QIcon>
#include <QString>

class QPainter;
class QPushButton;

/// The text of a button with its attributes, painted behind the button's image.
struct ButtonTitle {
    QString text;
    QColor foregroundColor; ///< not valid: that of the button's palette
    QFont font;
    Qt::Alignment alignment;

    /// What the title and the button's image take, without any space around them.
    QSizeF size(const QPushButton& button) const;
    /// In the colours that tell a disabled button.
    void paint(QPainter& painter, const QRectF& bounds, const QPushButton& button) const;
};
