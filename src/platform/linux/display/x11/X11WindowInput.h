#pragma once

#include "platform/linux/display/x11/X11Connection.h"
#include "platform/linux/display/x11/X11ForeignDesktops.h"

/// What a window of ours that gets input asks for, and what it does with what is not for it.
namespace X11WindowInput {

constexpr std::uint8_t primaryButton = 1;

/// Presses and releases of three buttons, and touches where there are any.
void select(X11Connection& x11, xcb_window_t window);

/// Sends a press to whom it would have gone to without our window: another program's desktop below
/// it, or where that is null the root window, whose menus many window managers open.
void passOn(
    X11Connection& x11, const X11ForeignDesktop* desktop, const xcb_button_press_event_t& press);

} // namespace X11WindowInput
