#pragma once

#include "platform/Screen.h"
#include "platform/linux/display/x11/X11Connection.h"

#include <vector>

/// The display's monitors (RandR 1.5), the primary one first, in device pixels.
namespace X11Monitors {

/// The root window as the only one where the display knows nothing about monitors.
std::vector<Screen> read(X11Connection& x11);

} // namespace X11Monitors
