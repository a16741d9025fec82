#include "platform/linux/FakeClock.h"

#include <algorithm>
#include <cerrno>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>

// The program's own definitions come before the C library's, for the libraries that it uses too.

namespace {

time_t shift = 0; // seconds, from the system's clock to the faked one

struct Timer {
    int descriptor = -1;
    int flags = 0;
    itimerspec wanted{}; // by the faked clock
    bool isCancelled = false;
} timer;

int arm()
{
    auto value = timer.wanted;
    if (timer.isCancelled)
        value.it_value = {0, 1}; // at once, to be read
    else if ((timer.flags & TFD_TIMER_ABSTIME) != 0)
        value.it_value.tv_sec = std::max<time_t>(value.it_value.tv_sec - shift, 1);
    const auto flags = timer.flags & TFD_TIMER_ABSTIME;
    return static_cast<int>(syscall(SYS_timerfd_settime, timer.descriptor, flags, &value, nullptr));
}

} // namespace

void FakeClock::set(std::chrono::seconds by)
{
    shift += by.count();
    timer.isCancelled = (timer.flags & TFD_TIMER_CANCEL_ON_SET) != 0;
    arm();
}

extern "C" {

int gettimeofday(timeval* time, void* /*zone*/) noexcept // what Qt reads
{
    const auto result = syscall(SYS_gettimeofday, time, nullptr);
    time->tv_sec += shift;
    return static_cast<int>(result);
}

int timerfd_settime(
    int descriptor, int flags, const itimerspec* value, itimerspec* /*former*/) noexcept
{
    timer = {descriptor, flags, *value};
    return arm();
}

ssize_t read(int descriptor, void* buffer, size_t size)
{
    const auto result = syscall(SYS_read, descriptor, buffer, size);
    if (descriptor != timer.descriptor || !std::exchange(timer.isCancelled, false))
        return result;
    arm();
    errno = ECANCELED;
    return -1;
}

} // extern "C"
