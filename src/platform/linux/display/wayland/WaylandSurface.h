#pragma once

#include "platform/linux/display/wayland/WaylandHandles.h"
#include "platform/linux/video/FrameTarget.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>

/// A surface that the main thread makes and configures and the render thread presents to. The main
/// thread ends it whenever the compositor or its window does; from then on `withSurface` does
/// nothing.
class WaylandSurface : public NativeSurface {
public:
    explicit WaylandSurface(WaylandHandle<wl_surface> surface) : m_surface(std::move(surface)) {}

    /// Runs the action unless the surface has ended; nobody else uses it meanwhile. Any thread.
    void withSurface(const std::function<void(wl_surface*)>& action);
    /// Hands the surface back; any thread may hold on to the rest.
    WaylandHandle<wl_surface> end();

    /// Whether the compositor wants the next picture. While it does not for long, nobody sees this
    /// one. Any thread.
    void setIsFollowing(bool isFollowing);
    bool isOverdue() const;

private:
    using Clock = std::chrono::steady_clock;
    static constexpr Clock::rep never = 0;
    std::atomic<Clock::rep> m_waitingSince = never;
    std::mutex m_mutex;
    WaylandHandle<wl_surface> m_surface;
};
