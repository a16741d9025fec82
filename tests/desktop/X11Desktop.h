#pragma once

#include "desktop/VirtualDesktop.h"
#include "platform/linux/display/x11/X11Handles.h"

#include <QImage>
#include <QRect>
#include <QSize>

#include <utility>
#include <vector>

/// An X server without a screen, without a window manager at first.
class X11Desktop : public VirtualDesktop {
public:
    /// `serverArguments` go to the server as they are.
    explicit X11Desktop(const QSize& size = {1280, 720}, const QStringList& serverArguments = {});
    ~X11Desktop() override;

    QString display() const { return m_display; }
    xcb_connection_t* connection() const { return m_connection.get(); }
    xcb_window_t root() const { return m_screen->root; }
    /// With a depth of 32 or else the root window's; the depth goes first.
    std::pair<std::uint8_t, xcb_visualid_t> visual(bool hasAlpha) const;
    /// Makes it where the server has none of that name.
    xcb_atom_t atom(const char* name) const;

    /// With additions to environment(). Returns when it manages windows.
    void startWindowManager(const QString& command = QStringLiteral("openbox"),
        const QProcessEnvironment& additions = {});
    /// Kills it, so that it cannot tidy up.
    void killWindowManager();

    void setMonitors(Monitors monitors) override;
    void click(const QPoint& point) override { click(point, 1); }
    void click(const QPoint& point, std::uint8_t button) const;
    void pressKey(std::uint8_t keyCode) const;
    /// What the server shows there; the whole of it for no area. Null where it shows nothing.
    QImage picture(const QRect& area = {}) const;
    /// Over the windows that are there.
    void paint(const QRect& area, const QColor& colour) const;
    /// For the left hand: button 3 is the primary one from now on.
    void swapButtons() const;
    void cover(const QColor& colour, Extent extent) override;
    void uncover() override;

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
    /// Asks the program of the topmost window to close it. Only without a window manager.
    void requestToCloseTopmost() const;
    void moveWindow(xcb_window_t window, const QPoint& position) const;

    /// What pagers and the windows' programs ask of the window manager.
    void iconify(xcb_window_t window) const { ask(window, "WM_CHANGE_STATE", 3); }
    void sendToDesktop(xcb_window_t window, std::uint32_t number) const
    {
        ask(window, "_NET_WM_DESKTOP", number);
    }
    void requestDesktop(std::uint32_t number) const { ask(root(), "_NET_CURRENT_DESKTOP", number); }
    /// Hides all windows but those of type desktop, or shows them again.
    void showDesktop(bool isShown) const { ask(root(), "_NET_SHOWING_DESKTOP", isShown ? 1 : 0); }
    /// Makes the window manager one of another name, as far as others can tell.
    void renameWindowManager(const QByteArray& name) const;
    /// Claims that a compositing manager runs.
    void pretendCompositing() const;
    /// Of every window that is managed.
    void requestClose() const;

    /// Of all programs, the topmost last.
    std::vector<xcb_window_t> topWindows() const;
    /// Of the managed windows, in the order in which they came.
    QStringList windowTitles() const;
    /// Whose windows of the type desktop are managed, by the instance of their class.
    QStringList desktopPrograms() const;
    /// The first managed one with that title, or none.
    xcb_window_t windowNamed(const QString& title) const;
    QByteArray property(xcb_window_t window, const char* name) const;

private:
    void nameDisplay(QProcessEnvironment& environment) const override;
    std::optional<QColor> pixel(const QPoint& point) const override;
    QColor bareColour() const override;
    /// The window manager.
    void ask(xcb_window_t window, const char* what, std::uint32_t value) const;
    void send(xcb_window_t receiver,
        std::uint32_t mask,
        xcb_window_t window,
        const char* what,
        std::uint32_t value) const;
    std::vector<xcb_window_t> managedWindows() const;

    QProcess m_server;
    QProcess m_windowManager;
    QString m_display;
    X11ConnectionHandle m_connection;
    const xcb_screen_t* m_screen;
    std::vector<xcb_window_t> m_covers;
};
