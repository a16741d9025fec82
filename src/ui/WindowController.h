#pragma once

#include <QString>
#include <QWidget>

#include <memory>

/// Owns a window that an interface file of the bundle describes (`NAME.ui`). The window is made
/// when it is first asked for; closing hides it, and it can be shown again. Main thread only.
///
/// A file that is missing, cannot be read or lacks one of the controls ends the process: the
/// installation is broken.
class WindowController : public QObject {
    Q_OBJECT

public:
    explicit WindowController(QString nibName);
    ~WindowController() override;
    WindowController(const WindowController&) = delete;
    WindowController& operator=(const WindowController&) = delete;

    bool isWindowLoaded() const { return m_window != nullptr; }
    /// Makes the window unless it is there already.
    void loadWindow();
    QWidget& window(); ///< loads it first

    /// Shows it in front, on the current virtual desktop and in the middle of the screen where the
    /// pointer is, and gives it the keyboard.
    void showWindow();
    void close();

protected:
    /// Runs once, when the window has been made and not been shown.
    virtual void windowDidLoad() {}

    /// The window's control of that object name, or the window itself; loads the window first.
    template <class Widget>
    Widget& outlet(const char* name)
    {
        auto* widget = qobject_cast<Widget*>(find(name));
        if (!widget)
            failOnOutlet(name, Widget::staticMetaObject.className());
        return *widget;
    }

private:
    QObject* find(const char* name);
    [[noreturn]] void failOnOutlet(const char* name, const char* className) const;

    QString m_nibName;
    struct DeleteLater {
        void operator()(QWidget* window) const { window->deleteLater(); }
    };
    /// An answer may come while the window runs a loop of its own, as for a drag.
    std::unique_ptr<QWidget, DeleteLater> m_window;
};
