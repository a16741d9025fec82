#pragma once

#include <QLabel>

/// A label that heads a window: bold and larger than the other texts, whatever their size is.
class HeadingLabel : public QLabel {
    Q_OBJECT

public:
    explicit HeadingLabel(QWidget* parent = nullptr);
};
