#include "platform/linux/display/wayland/WaylandCursor.h"

#include <utility>

void WaylandCursor::show(wl_pointer& pointer, std::uint32_t serial, int scale)
{
    if (!m_theme || std::exchange(m_scale, scale) != scale) {
        constexpr int usualSize = 24;
        const int size = qEnvironmentVariableIntValue("XCURSOR_SIZE");
        const auto theme = qgetenv("XCURSOR_THEME");
        m_theme.reset(wl_cursor_theme_load(theme.isEmpty() ? nullptr : theme.constData(),
            (size > 0 ? size : usualSize) * scale,
            m_connection.shm()));
    }
    if (!m_theme)
        return;
    const wl_cursor* cursor = wl_cursor_theme_get_cursor(m_theme.get(), "left_ptr");
    if (!cursor || cursor->image_count == 0)
        return;
    if (!m_surface)
        m_surface.reset(wl_compositor_create_surface(m_connection.compositor()));
    auto& image = *cursor->images[0];
    wl_surface_set_buffer_scale(m_surface.get(), scale);
    wl_surface_attach(m_surface.get(), wl_cursor_image_get_buffer(&image), 0, 0);
    wl_surface_damage_buffer(
        m_surface.get(), 0, 0, static_cast<int>(image.width), static_cast<int>(image.height));
    wl_surface_commit(m_surface.get());
    wl_pointer_set_cursor(&pointer,
        serial,
        m_surface.get(),
        static_cast<int>(image.hotspot_x) / scale,
        static_cast<int>(image.hotspot_y) / scale);
}
