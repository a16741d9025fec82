#include "platform/linux/display/wayland/WaylandSurface.h"

void WaylandSurface::withSurface(const std::function<void(wl_surface*)>& action)
{
    const std::lock_guard lock(m_mutex);
    if (m_surface)
        action(m_surface.get());
}

void WaylandSurface::end()
{
    const std::lock_guard lock(m_mutex);
    m_surface.reset();
}
