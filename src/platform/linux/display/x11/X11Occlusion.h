#pragma once

#include "base/Debounce.h"
#include "base/Disposable.h"
#include "platform/linux/display/x11/X11Connection.h"
#include "platform/linux/display/x11/X11WindowManager.h"

#include <QObject>

#include <set>

/// Follows whether all of our windows that are shown are covered by others. It looks when windows
/// or the window manager's word on them have changed, once they have settled; nothing runs while
/// nothing changes. Windows that bypass a running window manager, as menus do, do not count.
class X11Occlusion : public QObject {
    Q_OBJECT

public:
    X11Occlusion(X11Connection& connection, X11WindowManager& windowManager);

    /// A window of ours that is shown, until the token is released.
    [[nodiscard]] Disposable add(xcb_window_t window);

Q_SIGNALS:
    /// From "one can be seen", which holds at first, to "all are covered" or back. Nothing changes
    /// while none is shown.
    void changed();

private:
    void noteChange();
    void look();

    X11Connection& m_connection;
    X11WindowManager& m_windowManager;
    std::set<xcb_window_t> m_shown;
    bool m_isCovered = false;
    Debounce m_settling; // from a change until we look
};
