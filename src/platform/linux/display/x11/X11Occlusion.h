#pragma once

#include "base/Debounce.h"
#include "base/Disposable.h"
#include "platform/linux/display/x11/X11Connection.h"
#include "platform/linux/display/x11/X11WindowManager.h"

#include <QObject>

#include <functional>
#include <map>

/// Follows which of our windows that are shown are covered by others. It looks when windows or the
/// window manager's word on them have changed; nothing runs while nothing changes. Windows that
/// bypass a running window manager count where they cover a whole window of ours, as screen lockers
/// do and menus do not.
class X11Occlusion : public QObject {
    Q_OBJECT

public:
    X11Occlusion(X11Connection& connection, X11WindowManager& windowManager);

    /// A window of ours that is shown, until the token is released. It is told when it is covered,
    /// which at first it is not, and when it can be seen again.
    using CoveredHandler = std::function<void(bool isCovered)>;
    [[nodiscard]] Disposable add(xcb_window_t window, CoveredHandler covered);
    /// The server wants a part of it to be drawn: it can be seen.
    void noteExposed(xcb_window_t window);

Q_SIGNALS:
    /// From "one can be seen", which holds at first, to "all are covered" or back, once windows
    /// have settled. Nothing changes while none is shown.
    void changed();
    /// A window has been told.
    void windowChanged();

private:
    struct Shown {
        CoveredHandler covered;
        bool isCovered = false;
    };
    bool isAnyCovered() const;
    void noteChange();
    void look();
    void lookAndTell();
    void setIsCovered(xcb_window_t window, bool isCovered);

    X11Connection& m_connection;
    X11WindowManager& m_windowManager;
    std::map<xcb_window_t, Shown> m_shown;
    bool m_isEverythingCovered = false; // as it was told
    Debounce m_settling;                // from a change until we tell
    Debounce m_uncovering;              // and until we look whether there is something to show
};
