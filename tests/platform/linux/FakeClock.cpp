#include "platform/linux/FakeClock.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <map>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/timerfd.h>
#include <unistd.h>

// The program's own definitions come before the C library's, for the libraries that it uses too.

namespace {

struct Timer {
    int clock = 0;
    int flags = 0;
    itimerspec wanted{}; // by the faked clock
    bool isCancelled = false;
};

std::map<int, Timer>& timers()
{
    static std::map<int, Timer> timers;
    return timers;
}

time_t shift = 0; // seconds, from the system's clock to the faked one

void arm(int descriptor, const Timer& timer)
{
    auto value = timer.wanted;
    if (timer.isCancelled)
        value.it_value = {0, 1}; // at once, to be read
    else if (timer.clock == CLOCK_REALTIME && (timer.flags & TFD_TIMER_ABSTIME) != 0)
        value.it_value.tv_sec = std::max<time_t>(value.it_value.tv_sec - shift, 1);
    syscall(SYS_timerfd_settime, descriptor, timer.flags & TFD_TIMER_ABSTIME, &value, nullptr);
}

} // namespace

void FakeClock::set(std::chrono::seconds by)
{
    shift += by.count();
    for (auto& [descriptor, timer] : timers()) {
        timer.isCancelled =
            timer.clock == CLOCK_REALTIME && (timer.flags & TFD_TIMER_CANCEL_ON_SET) != 0;
        arm(descriptor, timer);
    }
}

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    const auto result = syscall(SYS_clock_gettime, clock, time);
    if (clock == CLOCK_REALTIME)
        time->tv_sec += shift;
    return static_cast<int>(result);
}

int gettimeofday(timeval* time, void* /*zone*/) noexcept
{
    const auto result = syscall(SYS_gettimeofday, time, nullptr);
    time->tv_sec += shift;
    return static_cast<int>(result);
}

int timerfd_create(clockid_t clock, int flags) noexcept
{
    const auto descriptor = static_cast<int>(syscall(SYS_timerfd_create, clock, flags));
    timers()[descriptor] = {clock};
    return descriptor;
}

int timerfd_settime(
    int descriptor, int flags, const itimerspec* value, itimerspec* /*former*/) noexcept
{
    auto& timer = timers().at(descriptor);
    timer = {timer.clock, flags, *value};
    arm(descriptor, timer);
    return 0;
}

ssize_t read(int descriptor, void* buffer, size_t size)
{
    const auto result = syscall(SYS_read, descriptor, buffer, size);
    const auto timer = timers().find(descriptor);
    if (timer == timers().end() || !timer->second.isCancelled)
        return result;
    timer->second.isCancelled = false;
    arm(descriptor, timer->second);
    errno = ECANCELED;
    return -1;
}

} // extern "C"
