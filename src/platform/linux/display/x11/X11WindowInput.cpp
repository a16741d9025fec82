#include "platform/linux/display/x11/X11WindowInput.h"

#include <xcb/xinput.h>

namespace {

void selectTouches(X11Connection& x11, xcb_window_t window)
{
    if (!x11.knowsTouches())
        return;
    struct {
        xcb_input_event_mask_t header{XCB_INPUT_DEVICE_ALL_MASTER, 1};
        std::uint32_t mask =
            XCB_INPUT_XI_EVENT_MASK_TOUCH_BEGIN | XCB_INPUT_XI_EVENT_MASK_TOUCH_UPDATE |
            XCB_INPUT_XI_EVENT_MASK_TOUCH_END; // the protocol wants all three or none
    } selection;
    xcb_input_xi_select_events(x11.get(), window, 1, &selection.header);
}

void send(X11Connection& x11,
    xcb_window_t receiver,
    std::uint32_t mask,
    const xcb_button_press_event_t& event)
{
    xcb_send_event(x11.get(), 0, receiver, mask, reinterpret_cast<const char*>(&event));
}

/// With an event mask GTK's programs ignore it; without one it goes to whoever made the window. The
/// release follows at once: we do not get the real one any more.
void passToDesktop(
    X11Connection& x11, const X11ForeignDesktop& desktop, xcb_button_press_event_t event)
{
    event.event = desktop.window;
    event.child = XCB_WINDOW_NONE;
    event.event_x = static_cast<std::int16_t>(event.root_x - desktop.frame.x());
    event.event_y = static_cast<std::int16_t>(event.root_y - desktop.frame.y());
    send(x11, desktop.window, XCB_EVENT_MASK_NO_EVENT, event);
    event.response_type = XCB_BUTTON_RELEASE;
    constexpr unsigned firstButton = XCB_BUTTON_MASK_1;
    event.state = static_cast<std::uint16_t>(event.state | firstButton << (event.detail - 1U));
    send(x11, desktop.window, XCB_EVENT_MASK_NO_EVENT, event);
}

void passToRoot(X11Connection& x11, xcb_button_press_event_t event)
{
    event.event = x11.root();
    event.child = XCB_WINDOW_NONE;
    event.event_x = event.root_x;
    event.event_y = event.root_y;
    send(x11, x11.root(), XCB_EVENT_MASK_BUTTON_PRESS, event);
}

} // namespace

void X11WindowInput::select(X11Connection& x11, xcb_window_t window)
{
    constexpr std::uint8_t middleButton = 2;
    constexpr std::uint8_t secondaryButton = 3;
    // Grabs and not an event mask, because a window manager may have some of the buttons already:
    // then only those fail.
    for (const auto button : {primaryButton, middleButton, secondaryButton}) {
        xcb_grab_button(x11.get(),
            0,
            window,
            XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE,
            XCB_GRAB_MODE_ASYNC,
            XCB_GRAB_MODE_ASYNC,
            XCB_NONE,
            XCB_NONE,
            button,
            XCB_MOD_MASK_ANY);
    }
    selectTouches(x11, window);
}

void X11WindowInput::passOn(
    X11Connection& x11, const X11ForeignDesktop* desktop, const xcb_button_press_event_t& press)
{
    xcb_ungrab_pointer(x11.get(), press.time); // or the menu could not take it
    if (desktop)
        passToDesktop(x11, *desktop, press);
    else
        passToRoot(x11, press);
    xcb_flush(x11.get());
}
