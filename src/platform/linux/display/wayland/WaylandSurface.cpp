#include "platform/linux/display/wayland/WaylandSurface.h"

#include <utility>

void WaylandSurface::withSurface(const std::function<void(wl_surface*)>& action)
{
    const std::lock_guard lock(m_mutex);
    if (m_surface)
        action(m_surface.get());
}

WaylandHandle<wl_surface> WaylandSurface::end()
{
    const std::lock_guard lock(m_mutex);
    return std::move(m_surface);
}
