#pragma once

#include <QPushButton>

/// A push button over which the pointer is a pointing hand.
class ButtonWithPointCursor : public QPushButton {
    Q_OBJECT

public:
    explicit ButtonWithPointCursor(QWidget* parent = nullptr);

    /// Runs once when the button comes from an interface file, after all of the file has been
    /// read, its properties have been assigned and its layouts have placed it.
    virtual void awakeFromNib() {}

protected:
    virtual void resetCursorRects();
};
