#pragma once

#include "platform/linux/display/x11/X11Connection.h"

/// A visual with 8 bits a colour in 32-bit pixels, which is what frames are drawn in, and the depth
/// that goes with it. The root's own wherever it qualifies, as it nearly always does.
struct X11PictureVisual {
    xcb_visualid_t identifier = XCB_NONE;
    std::uint8_t depth = 0;
    xcb_colormap_t colormap = XCB_NONE; ///< one for all windows

    /// Looks once. Ends the program where the display has none.
    static const X11PictureVisual& of(X11Connection& x11);
};
