#pragma once

#include "base/Debounce.h"
#include "base/Disposable.h"
#include "platform/linux/display/x11/X11Connection.h"
#include "platform/linux/display/x11/X11WindowManager.h"

#include <QObject>
#include <QRect>
#include <QRegion>

#include <map>
#include <optional>
#include <vector>

/// Another program's window of type desktop, as file managers keep one with their picture and
/// icons.
struct X11ForeignDesktop {
    xcb_window_t window;
    QRect frame;        ///< in root coordinates
    QRegion opaqueArea; ///< of it, what lets nothing shine through
    bool isTransparent; ///< has nothing but icons, of which the alpha channel tells

    bool operator==(const X11ForeignDesktop&) const = default;
};

/// Follows which of them are shown, under a window manager that knows the type. It looks when
/// windows have come, gone or changed, once they have settled.
class X11ForeignDesktops : public QObject {
    Q_OBJECT

public:
    X11ForeignDesktops(X11Connection& connection, X11WindowManager& windowManager);

    /// From the bottom to the top.
    const std::vector<X11ForeignDesktop>& all() const { return m_all; }
    /// The topmost one below a point of the root window, or null.
    const X11ForeignDesktop* at(const QPoint& point) const;
    bool contains(xcb_window_t window) const;

Q_SIGNALS:
    void changed();

private:
    void look();
    void forget(xcb_window_t window);
    std::vector<X11ForeignDesktop> read();
    std::vector<xcb_window_t> desktopWindows();
    bool doesTransparencyShow();
    void watch(const std::vector<xcb_window_t>& windows);
    void followCompositor();

    X11Connection& m_connection;
    X11WindowManager& m_windowManager;
    std::vector<X11ForeignDesktop> m_all;
    std::map<xcb_window_t, Disposable> m_watches;
    std::optional<Disposable> m_compositorWatch;
    Debounce m_settling; // from a change until we look
};
