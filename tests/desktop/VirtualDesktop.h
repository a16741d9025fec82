#pragma once

#include "platform/linux/display/x11/X11Handles.h"

#include <QColor>
#include <QPoint>
#include <QProcess>
#include <QRect>
#include <QSize>

#include <vector>

/// An X server without a screen and a session bus of its own. What it shows is read
/// from the root window, as a person would see it.
class VirtualDesktop {
public:
    /// `serverArguments` go to the server as they are.
    explicit VirtualDesktop(
        const QSize& size = {1280, 720}, const QStringList& serverArguments = {});
    ~VirtualDesktop();
    VirtualDesktop(const VirtualDesktop&) = delete;
    VirtualDesktop& operator=(const VirtualDesktop&) = delete;

    /// For processes that shall run on this desktop.
    QProcessEnvironment environment() const;
    QString display() const { return m_display; }
    QString busAddress() const { return m_busAddress; }
    xcb_connection_t* connection() const { return m_connection.get(); }
    xcb_window_t root() const { return m_screen->root; }

    /// Returns when it manages windows.
    void startWindowManager();
    /// Kills it, so that it cannot tidy up.
    void killWindowManager();

    void stopBus();

    /// The whole screen as one monitor; a left one only, or a left and a right one.
    enum class Monitors { One, LeftHalf, TwoHalves };
    void setMonitors(Monitors monitors) const;

    /// "red" for anything near pure red, and so on; "#rrggbb" for what is no such colour.
    QString colour(const QPoint& point) const;
    QString leftColour() const { return colour({200, 200}); }
    QString rightColour() const { return colour({m_size.width() - 200, 200}); }

    void moveAndClick(const QPoint& point, std::uint8_t button = 1) const;

    /// A window of another program, of one colour, at the left unless told otherwise.
    enum class WindowKind {
        Ordinary,
        Desktop,          ///< of that type
        WithAlpha,        ///< each pixel has an opacity
        WithOpaqueRegion, ///< the same, and says that all of it is opaque
        Faded,            ///< to be shown half transparent by a compositor
        Shaped,           ///< lacks its lower half
    };
    xcb_window_t openWindow(
        WindowKind kind, const QColor& colour, const QRect& frame = {100, 100, 300, 300}) const;
    void closeWindow(xcb_window_t window) const;
    void moveWindow(xcb_window_t window, const QPoint& position) const;

    /// What pagers and the windows' programs ask of the window manager.
    void iconify(xcb_window_t window) const { ask(window, "WM_CHANGE_STATE", 3); }
    void sendToDesktop(xcb_window_t window, std::uint32_t number) const
    {
        ask(window, "_NET_WM_DESKTOP", number);
    }
    void requestDesktop(std::uint32_t number) const { ask(root(), "_NET_CURRENT_DESKTOP", number); }
    /// Of every window that is managed.
    void requestClose() const;

    /// Of the managed windows, in the order in which they came.
    QStringList windowTitles() const;

private:
    void ask(xcb_window_t window, const char* what, std::uint32_t value) const;
    std::vector<xcb_window_t> managedWindows() const;
    QByteArray property(xcb_window_t window, const char* name) const;
    xcb_atom_t atom(const char* name) const;

    QSize m_size;
    QProcess m_server;
    QProcess m_bus;
    QProcess m_windowManager;
    QString m_display;
    QString m_busAddress;
    X11ConnectionHandle m_connection;
    const xcb_screen_t* m_screen;
};
