#include "ui/HeadingLabel.h"

#include <QFontInfo>

HeadingLabel::HeadingLabel(QWidget* parent) : QLabel(parent)
{
    constexpr qreal enlargement = 1.35;
    auto heading = font();
    heading.setPointSizeF(QFontInfo(heading).pointSizeF() * enlargement);
    heading.setBold(true);
    setFont(heading);
}
