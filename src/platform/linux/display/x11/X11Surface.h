#pragma once

#include "platform/linux/video/FrameTarget.h"

#include <xcb/xcb.h>

/// A window as the presenter's own connection knows it: by its ID.
class X11Surface : public NativeSurface {
public:
    explicit X11Surface(xcb_window_t window) : m_window(window) {}

    xcb_window_t window() const { return m_window; }

private:
    xcb_window_t m_window;
};
