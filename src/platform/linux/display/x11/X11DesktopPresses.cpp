#include "platform/linux/display/x11/X11DesktopPresses.h"

#include "platform/linux/display/x11/X11WindowInput.h"

#include <xcb/xinput.h>

#include <utility>

namespace {

using X11WindowInput::primaryButton;

constexpr int deepest = 32; // windows inside one another; a limit to what others can make us do

} // namespace

X11DesktopPresses::X11DesktopPresses(X11Connection& connection, X11ForeignDesktops& desktops)
    : m_connection(connection),
      m_desktops(desktops),
      m_events(connection.watchKind(
          XCB_GE_GENERIC, [this](const xcb_generic_event_t& event) { handle(event); }))
{
}

Disposable X11DesktopPresses::listen()
{
    if (m_listenerCount++ == 0)
        select(
            XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE);
    return Disposable([this] {
        if (--m_listenerCount == 0)
            select(0);
    });
}

void X11DesktopPresses::select(std::uint32_t events)
{
    if (!m_connection.knowsTouches())
        return;
    struct {
        xcb_input_event_mask_t header{XCB_INPUT_DEVICE_ALL_MASTER, 1};
        std::uint32_t mask;
    } selection{.mask = events};
    xcb_input_xi_select_events(m_connection.get(), m_connection.root(), 1, &selection.header);
}

void X11DesktopPresses::handle(const xcb_generic_event_t& event)
{
    const auto& button = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
    constexpr std::uint32_t firstOfWheel = 4;
    if (button.detail >= firstOfWheel)
        return;
    if (button.event_type == XCB_INPUT_RAW_BUTTON_PRESS) {
        if (!isPrimary(button.detail))
            return;
        const auto where = pointer();
        m_isPressed = where && where->isOnDesktop;
        if (m_isPressed)
            Q_EMIT pressed(where->position);
    } else if (button.event_type == XCB_INPUT_RAW_BUTTON_RELEASE && m_isPressed &&
               isPrimary(button.detail)) {
        m_isPressed = false;
        if (const auto where = pointer())
            Q_EMIT released(where->position);
    }
}

/// Raw events tell the device's button, before those for the left hand are swapped.
bool X11DesktopPresses::isPrimary(std::uint32_t deviceButton)
{
    auto* const x11 = m_connection.get();
    const auto reply =
        own(xcb_get_pointer_mapping_reply(x11, xcb_get_pointer_mapping(x11), nullptr));
    if (!reply || deviceButton == 0 || deviceButton > reply->map_len)
        return deviceButton == primaryButton;
    return xcb_get_pointer_mapping_map(reply.get())[deviceButton - 1] == primaryButton;
}

/// A raw event does not tell where. The path leads from the root window down to the window that
/// gets the input; our own hear of their presses by themselves.
std::optional<X11DesktopPresses::Pointer> X11DesktopPresses::pointer()
{
    auto* const x11 = m_connection.get();
    std::optional<Pointer> found;
    auto window = m_connection.root();
    for (int depth = 0; depth < deepest; ++depth) {
        const auto reply =
            own(xcb_query_pointer_reply(x11, xcb_query_pointer(x11, window), nullptr));
        if (!reply)
            return found; // the window is gone
        if (!found)
            found = Pointer{{reply->root_x, reply->root_y}, reply->child == XCB_WINDOW_NONE};
        window = reply->child;
        if (window == XCB_WINDOW_NONE)
            return found;
        if (m_desktops.contains(window)) {
            found->isOnDesktop = true;
            return found;
        }
    }
    return found;
}
