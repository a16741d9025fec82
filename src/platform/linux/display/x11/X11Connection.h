#pragma once

#include "base/Disposable.h"
#include "platform/linux/display/x11/X11Handles.h"

#include <QObject>
#include <QSocketNotifier>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

/// A property that was asked for.
struct X11PropertyCookie {
    xcb_get_property_cookie_t cookie;
    xcb_atom_t type;
};

/// The main thread's connection to the X server, apart from Qt's. Its errors are other clients'
/// windows that died meanwhile and are dropped.
class X11Connection : public QObject {
    Q_OBJECT

public:
    /// Null where there is no X display. Needs an application object.
    static std::unique_ptr<X11Connection> open();

    X11Connection(X11ConnectionHandle connection, int screenNumber);

    xcb_connection_t* get() const { return m_connection.get(); }
    const xcb_screen_t& screen() const { return *m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    xcb_ewmh_connection_t& hints() const { return *m_hints; }
    /// For names that are not among the hints.
    xcb_atom_t atom(const std::string& name);

    /// The 32-bit values of a property; empty when it is absent, of another type or format.
    std::vector<std::uint32_t> property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type);

    /// The same in two steps, for many questions at once. Each answer is to be taken, once.
    X11PropertyCookie askForProperty(xcb_window_t window, xcb_atom_t name, xcb_atom_t type);
    std::vector<std::uint32_t> property(const X11PropertyCookie& cookie);

    using EventHandler = std::function<void(const xcb_generic_event_t& event)>;
    /// Hands the core and input events of one window to `handler`.
    [[nodiscard]] Disposable watch(xcb_window_t window, EventHandler handler);
    /// All events with this code, as extensions have.
    [[nodiscard]] Disposable watchKind(std::uint8_t code, EventHandler handler);

    /// Whether the window is one that this connection has made.
    bool isOwn(xcb_window_t window) const;
    /// Whether the server has RandR 1.5, which tells of monitors.
    bool knowsMonitors() const { return m_knowsMonitors; }
    /// Whether it has X Input 2.2, which tells of touches and of the devices themselves.
    bool knowsTouches() const { return m_knowsTouches; }

    /// Returns when the server has carried out all requests made so far.
    void synchronize();

Q_SIGNALS:
    void rootPropertyChanged(quint32 atom);
    /// A window on the root came, went, was moved, resized or restacked.
    void rootChildrenChanged();
    /// RandR has told of the monitors, or the root window has another size.
    void monitorsChanged();
    /// The server's screen saver has begun or ended.
    void screenSaverChanged();
    /// The server has closed the connection.
    void lost();

private:
    struct Watch {
        xcb_window_t window;  // none: of any
        std::uint8_t code;    // then
        EventHandler handler; // empty once it has ended
    };

    Disposable add(Watch added);
    void processEvents();
    void deliver(const xcb_generic_event_t& event);
    void followMonitors();
    void askForTouches();
    void followScreenSaver();

    X11ConnectionHandle m_connection;
    X11Hints m_hints;
    xcb_screen_t* m_screen;
    QSocketNotifier m_notifier;
    std::map<std::string, xcb_atom_t> m_atoms;
    std::vector<std::shared_ptr<Watch>> m_watches;
    std::uint8_t m_randrFirstEvent = 0; // 0 where there is no RandR
    bool m_knowsMonitors = false;
    bool m_knowsTouches = false;
    std::uint8_t m_screenSaverEvent = 0;
};
