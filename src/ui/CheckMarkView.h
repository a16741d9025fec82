#pragma once

#include <QWidget>

/// A check mark on a disc in the palette's highlight colour: all is well.
class CheckMarkView : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent* event) override;
};
