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

void WaylandSurface::setIsFollowing(bool isFollowing)
{
    m_waitingSince = isFollowing ? never : Clock::now().time_since_epoch().count();
}

bool WaylandSurface::isOverdue() const
{
    constexpr std::chrono::milliseconds patience{500};
    const auto since = m_waitingSince.load();
    return since != never && Clock::now().time_since_epoch() - Clock::duration(since) > patience;
}
