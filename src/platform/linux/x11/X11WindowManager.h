#pragma once

#include "base/Disposable.h"
#include "platform/linux/x11/X11Connection.h"

#include <QObject>
#include <QTimer>

#include <optional>

/// Which window manager runs, as far as desktop windows are concerned
/// (https://specifications.freedesktop.org/wm-spec).
class X11WindowManager : public QObject {
    Q_OBJECT

public:
    explicit X11WindowManager(X11Connection& connection);

    /// Whether a window manager runs that lists the desktop type among what it supports. Tiling
    /// window managers do not, and would place such a window among the others.
    bool knowsDesktopWindows() const { return m_knowsDesktopWindows; }

Q_SIGNALS:
    void knowsDesktopWindowsChanged();

private:
    void probe();
    xcb_window_t checkWindow();

    X11Connection& m_connection;
    bool m_knowsDesktopWindows = false;
    QTimer m_settling; // a window manager sets its properties one after the other
    std::optional<Disposable> m_checkWindowWatch;
};
