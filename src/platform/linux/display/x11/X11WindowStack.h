#pragma once

#include "platform/linux/display/Occlusion.h"
#include "platform/linux/display/x11/X11Connection.h"
#include "platform/linux/display/x11/X11WindowManager.h"

#include <set>
#include <vector>

/// The windows on the screen, as the window manager lists them, or the server where there is none
/// that does.
namespace X11WindowStack {

/// From the top to the bottom, in root coordinates: what can be seen of `ours`, and what covers it.
/// Foreign windows that let shine through what is below them count with the part that does not.
std::vector<StackedWindow> read(
    X11Connection& x11, X11WindowManager& windowManager, const std::set<xcb_window_t>& ours);

} // namespace X11WindowStack
