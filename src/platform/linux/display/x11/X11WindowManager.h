#pragma once

#include "base/Debounce.h"
#include "base/Disposable.h"
#include "platform/linux/display/x11/X11Connection.h"

#include <QByteArray>
#include <QObject>

#include <optional>

/// Which window manager runs, as far as desktop windows are concerned
/// (https://specifications.freedesktop.org/wm-spec).
class X11WindowManager : public QObject {
    Q_OBJECT

public:
    explicit X11WindowManager(X11Connection& connection);

    enum class DesktopWindowSupport {
        /// A window manager runs that lists the desktop type among what it supports.
        Managed,
        /// There is none, or a tiling one that would place such a window among the others: it has
        /// to bypass the window manager and stay at the bottom of the stack by itself.
        Bypassing,
        /// The same below a Wayland compositor, which shows windows that bypass it above all
        /// others.
        Impossible,
    };
    DesktopWindowSupport desktopWindowSupport() const { return m_desktopWindowSupport; }

    /// What it calls itself, empty where it does not.
    const QByteArray& name() const { return m_name; }

    /// Whether one runs now that lists this among what it supports. Asks the server.
    bool supports(xcb_atom_t hint);

Q_SIGNALS:
    void desktopWindowSupportChanged();
    /// Another one of the same kind runs.
    void nameChanged();

private:
    void probe();
    xcb_window_t checkWindow();

    X11Connection& m_connection;
    bool m_isXwayland;
    DesktopWindowSupport m_desktopWindowSupport = DesktopWindowSupport::Bypassing;
    QByteArray m_name;
    Debounce m_settling; // a window manager sets its properties one after the other
    std::optional<Disposable> m_checkWindowWatch;
};
