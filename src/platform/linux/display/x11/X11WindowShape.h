#pragma once

#include "platform/linux/display/x11/X11Connection.h"

#include <QRegion>

/// Windows that are no rectangles (the extension SHAPE). Where the server lacks it they stay so.
namespace X11WindowShape {

enum class Input { Taken, LetThrough };
/// Only while it is mapped: before, xfwm4 and openbox lose it. False where it stays as it is.
bool setInput(X11Connection& x11, xcb_window_t window, Input input);

/// What of the window there is; all of it for an empty region.
void setArea(X11Connection& x11, xcb_window_t window, const QRegion& area);

} // namespace X11WindowShape
