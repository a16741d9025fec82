#pragma once

#include <chrono>

/// The system's wall clock as this process sees it, with the timer that was set last; linked into
/// a test, it takes the place of the system's own. The system's clock itself stays as it is.
namespace FakeClock {

/// Sets the clock forward, or back. The timer is told as the kernel tells it (timerfd_create(2)).
void set(std::chrono::seconds by);

} // namespace FakeClock
