#pragma once

#include "ui/WindowController.h"

class QLabel;

/// A small alert with a title, an explanatory line and a button that confirms.
///
/// Made once and shown again with other texts: asking for a label makes the window if need be.
class CustomAlertWindowController : public WindowController {
    Q_OBJECT

public:
    explicit CustomAlertWindowController(
        QString nibName = QStringLiteral("CustomAlertWindowController"));

    QLabel& titleLabel();
    QLabel& infoLabel();

    /// What the button does: closes the window.
    void ok();

protected:
    void windowDidLoad() override;
};
