#pragma once

#include "base/Disposable.h"
#include "platform/linux/x11/X11Handles.h"

#include <QObject>
#include <QSocketNotifier>

#include <functional>
#include <map>
#include <string>
#include <vector>

/// A property that was asked for.
struct X11PropertyCookie {
    xcb_get_property_cookie_t cookie;
    xcb_atom_t type;
};

/// The main thread's connection to the X server, apart from Qt's. Its errors are other clients'
/// windows that died meanwhile and are dropped; a connection that breaks ends the application.
class X11Connection : public QObject {
    Q_OBJECT

public:
    /// Null where there is no X display. Needs an application object.
    static X11Connection* shared();

    explicit X11Connection(X11ConnectionHandle connection, int screenNumber);

    xcb_connection_t* get() const { return m_connection.get(); }
    const xcb_screen_t& screen() const { return *m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    xcb_atom_t atom(const std::string& name);

    /// The 32-bit values of a property; empty when it is absent, of another type or format.
    std::vector<std::uint32_t> property(
        xcb_window_t window, const std::string& name, xcb_atom_t type);

    /// The same in two steps, for many questions at once. Each answer is to be taken, once.
    X11PropertyCookie askForProperty(xcb_window_t window, const std::string& name, xcb_atom_t type);
    std::vector<std::uint32_t> property(const X11PropertyCookie& cookie);

    using EventHandler = std::function<void(const xcb_generic_event_t& event)>;
    /// Hands the core and input events of one window to `handler`; one handler a window.
    [[nodiscard]] Disposable watch(xcb_window_t window, EventHandler handler);

    /// Returns when the server has carried out all requests made so far.
    void synchronize();

    /// Says once on standard error that the server is gone, whoever notices first.
    static void reportLoss();

Q_SIGNALS:
    void rootPropertyChanged(quint32 atom);
    /// A window on the root came, went, was moved, resized or restacked.
    void rootChildrenChanged();

private:
    void processEvents();
    void deliver(const xcb_generic_event_t& event);

    X11ConnectionHandle m_connection;
    xcb_screen_t* m_screen;
    QSocketNotifier m_notifier;
    std::map<std::string, xcb_atom_t> m_atoms;
    std::map<xcb_window_t, EventHandler> m_handlers;
};
