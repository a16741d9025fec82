#pragma once

#include "platform/linux/display/wayland/WaylandConnection.h"

#include <wayland-cursor.h>

#include <memory>

/// The arrow that the pointer is over the wallpaper: a program that does not set one keeps that of
/// the window before.
class WaylandCursor {
public:
    explicit WaylandCursor(WaylandConnection& connection) : m_connection(connection) {}

    /// `serial` is that of the pointer's entering. `scale`: device pixels a logical one.
    void show(wl_pointer& pointer, std::uint32_t serial, int scale);

private:
    struct ThemeDeleter {
        void operator()(wl_cursor_theme* theme) const { wl_cursor_theme_destroy(theme); }
    };

    WaylandConnection& m_connection;
    std::unique_ptr<wl_cursor_theme, ThemeDeleter> m_theme;
    int m_scale = 0; // that the theme was loaded for
    WaylandHandle<wl_surface> m_surface;
};
