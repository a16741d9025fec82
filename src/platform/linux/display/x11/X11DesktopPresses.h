#pragma once

#include "base/Disposable.h"
#include "platform/linux/display/x11/X11Connection.h"
#include "platform/linux/display/x11/X11ForeignDesktops.h"

#include <QObject>
#include <QPoint>

#include <optional>

/// Hears the primary button on the desktop while our windows let all input through to another
/// program's: the device itself is listened to, and whatever is below the pointer gets the press as
/// if we did not (X Input 2.1). Without that extension nothing is heard.
class X11DesktopPresses : public QObject {
    Q_OBJECT

public:
    X11DesktopPresses(X11Connection& connection, X11ForeignDesktops& desktops);

    /// Until the token is released. Whatever runs in front, its clicks wake us up meanwhile.
    [[nodiscard]] Disposable listen();

Q_SIGNALS:
    /// In root coordinates. Below the pointer there was nothing but a desktop.
    void pressed(const QPoint& point);
    /// Of a button that was pressed so, wherever the pointer is by now.
    void released(const QPoint& point);

private:
    void select(std::uint32_t events);
    void handle(const xcb_generic_event_t& event);
    bool isPrimary(std::uint32_t deviceButton);
    struct Pointer {
        QPoint position;
        bool isOnDesktop;
    };
    std::optional<Pointer> pointer();

    X11Connection& m_connection;
    X11ForeignDesktops& m_desktops;
    int m_listenerCount = 0;
    bool m_isPressed = false;
    Disposable m_events;
};
