#include "platform/linux/display/x11/X11WindowHints.h"

#include <QSysInfo>

#include <xcb/xcb_icccm.h>

#include <array>
#include <string_view>
#include <unistd.h>
#include <vector>

using namespace std::string_view_literals;

namespace {

void setText(X11Connection& x11,
    xcb_window_t window,
    xcb_atom_t name,
    xcb_atom_t type,
    std::string_view text)
{
    xcb_change_property(x11.get(),
        XCB_PROP_MODE_REPLACE,
        window,
        name,
        type,
        8,
        static_cast<std::uint32_t>(text.size()),
        text.data());
}

/// Motif's way of asking for no frame; some window managers put one around any type.
void describeDecorations(X11Connection& x11, xcb_window_t window)
{
    constexpr std::uint32_t decorationsAreGiven = 2;
    const std::array<std::uint32_t, 5> noDecorations{decorationsAreGiven, 0, 0, 0, 0};
    const auto name = x11.atom("_MOTIF_WM_HINTS");
    xcb_change_property(x11.get(),
        XCB_PROP_MODE_REPLACE,
        window,
        name,
        name,
        32,
        noDecorations.size(),
        noDecorations.data());
}

} // namespace

void X11WindowHints::describe(X11Connection& x11, xcb_window_t window)
{
    auto& hints = x11.hints();
    setText(x11, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, "tavelorhelper\0TavelorHelper\0"sv);
    setText(x11,
        window,
        XCB_ATOM_WM_CLIENT_MACHINE,
        XCB_ATOM_STRING,
        QSysInfo::machineHostName().toStdString());
    setText(x11, window, hints._NET_WM_NAME, hints.UTF8_STRING, "TavelorHelper"sv);
    xcb_ewmh_set_wm_pid(&hints, window, static_cast<std::uint32_t>(getpid()));
    // Offered, so that a request to close the window is sent to us, who ignore it; a client that
    // does not offer it is killed instead.
    auto closing = x11.atom("WM_DELETE_WINDOW");
    xcb_icccm_set_wm_protocols(x11.get(), window, hints.WM_PROTOCOLS, 1, &closing);
    describeDecorations(x11, window);

    xcb_icccm_wm_hints_t manners{};
    xcb_icccm_wm_hints_set_input(&manners, 0);
    xcb_icccm_wm_hints_set_normal(&manners);
    xcb_icccm_set_wm_hints(x11.get(), window, &manners);
}

void X11WindowHints::describeFrame(
    X11Connection& x11, xcb_window_t window, const QRect& frame, Placement placement)
{
    xcb_size_hints_t size{};
    xcb_icccm_size_hints_set_position(&size, 1, frame.x(), frame.y());
    xcb_icccm_size_hints_set_size(&size, 1, frame.width(), frame.height());
    xcb_icccm_size_hints_set_win_gravity(&size, XCB_GRAVITY_STATIC);
    if (placement == Placement::InFront) { // or KWin makes it as large as the panels leave room
        xcb_icccm_size_hints_set_min_size(&size, frame.width(), frame.height());
        xcb_icccm_size_hints_set_max_size(&size, frame.width(), frame.height());
    }
    xcb_icccm_set_wm_normal_hints(x11.get(), window, &size);
}

void X11WindowHints::describeLayer(
    X11Connection& x11, xcb_window_t window, Placement placement, WindowCollectionBehavior behavior)
{
    auto& hints = x11.hints();
    const bool isInFront = placement == Placement::InFront;
    auto type = isInFront ? hints._NET_WM_WINDOW_TYPE_NORMAL : hints._NET_WM_WINDOW_TYPE_DESKTOP;
    xcb_ewmh_set_wm_window_type(&hints, window, 1, &type);

    std::vector<xcb_atom_t> states;
    // Not on a window of type desktop: mutter tests this state before the type and would lift the
    // window above the desktop's icons.
    if (isInFront)
        states.push_back(hints._NET_WM_STATE_BELOW);
    if (contains(behavior, WindowCollectionBehavior::CanJoinAllSpaces)) {
        constexpr std::uint32_t allDesktops = 0xffffffff;
        xcb_ewmh_set_wm_desktop(&hints, window, allDesktops);
        if (isInFront)
            states.push_back(hints._NET_WM_STATE_STICKY);
    }
    if (contains(behavior, WindowCollectionBehavior::Transient)) {
        states.push_back(hints._NET_WM_STATE_SKIP_TASKBAR);
        states.push_back(hints._NET_WM_STATE_SKIP_PAGER);
    }
    xcb_ewmh_set_wm_state(&hints, window, static_cast<std::uint32_t>(states.size()), states.data());
}
