#include "ui/CustomAlertWindowController.h"

#include <QLabel>
#include <QPushButton>

#include <utility>

CustomAlertWindowController::CustomAlertWindowController(QString nibName)
    : WindowController(std::move(nibName))
{
}

QLabel& CustomAlertWindowController::titleLabel()
{
    return outlet<QLabel>("titleLabel");
}

QLabel& CustomAlertWindowController::infoLabel()
{
    return outlet<QLabel>("infoLabel");
}

void CustomAlertWindowController::ok()
{
    close();
}

void CustomAlertWindowController::windowDidLoad()
{
    WindowController::windowDidLoad();
    // No buttons to minimize, to zoom or to fill the screen.
    window().setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                            Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
    connect(&outlet<QPushButton>("okButton"),
        &QPushButton::clicked,
        this,
        &CustomAlertWindowController::ok);
}
