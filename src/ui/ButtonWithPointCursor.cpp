#include "ui/ButtonWithPointCursor.h"

ButtonWithPointCursor::ButtonWithPointCursor(QWidget* parent) : QPushButton(parent)
{
    ButtonWithPointCursor::resetCursorRects();
}

void ButtonWithPointCursor::resetCursorRects()
{
    setCursor(Qt::PointingHandCursor);
}
