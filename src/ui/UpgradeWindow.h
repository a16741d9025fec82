#pragma once

#include "ui/WindowController.h"

#include <QDialog>
#include <QIcon>
#include <QPointer>

#include <optional>

/// The panel of an offer. Without a frame, and of the dialog type all the same, so that window
/// managers give it the keyboard; its background moves it.
class UpgradeWindow : public QDialog {
    Q_OBJECT

public:
    explicit UpgradeWindow(QWidget* parent = nullptr);

    /// The one that owns the window.
    WindowController* windowController() const { return m_windowController; }
    void setWindowController(WindowController* controller);

    /// The image that is the whole visible window, with its corners. Without one the window is
    /// plain.
    void setBackGround(const QIcon& image);

public Q_SLOTS:
    /// Opens the download's address if its controller has an offer with one, and closes.
    void openUpdate();
    void performClose();

protected:
    /// Enter is for the control that has the keyboard. There is no default button: the window comes
    /// by itself, and what somebody types elsewhere at that moment must not start the download.
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QPointer<WindowController> m_windowController; // which the window may outlive a little
    QIcon m_backGround;
    std::optional<QPoint> m_grip; ///< where the pointer holds the window that it moves
};
