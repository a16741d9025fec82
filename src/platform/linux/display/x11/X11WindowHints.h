#pragma once

#include "platform/DesktopWindow.h"
#include "platform/linux/display/x11/X11Connection.h"
#include "platform/linux/display/x11/X11Placements.h"

#include <QRect>

/// What a window manager reads about a window of ours.
namespace X11WindowHints {

/// What never changes.
void describe(X11Connection& x11, xcb_window_t window);

/// Its place and size. Without them a window manager may place it on another monitor.
void describeFrame(
    X11Connection& x11, xcb_window_t window, const QRect& frame, Placement placement);

/// Its type and state, each time before it is mapped: window managers remove the state when a
/// window is withdrawn.
void describeLayer(X11Connection& x11,
    xcb_window_t window,
    Placement placement,
    WindowCollectionBehavior behavior);

} // namespace X11WindowHints
