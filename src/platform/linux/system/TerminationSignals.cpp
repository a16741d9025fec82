#include "platform/linux/system/TerminationSignals.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr std::array handledSignals{SIGTERM, SIGINT, SIGHUP};

int wakeDescriptor = -1; // where a handler, which may do next to nothing, leaves its word

void wake(int /*signal*/)
{
    const auto savedError = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(wakeDescriptor, &one, sizeof one);
    errno = savedError;
}

void setHandler(void (*handler)(int))
{
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int signal : handledSignals)
        sigaction(signal, &action, nullptr);
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> handler)
{
    wakeDescriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    m_notifier = std::make_unique<QSocketNotifier>(wakeDescriptor, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(),
        &QSocketNotifier::activated,
        m_notifier.get(),
        [handler = std::move(handler)] {
            std::uint64_t count = 0;
            if (read(wakeDescriptor, &count, sizeof count) == sizeof count)
                handler();
        });
    setHandler(wake);
}

TerminationSignals::~TerminationSignals()
{
    setHandler(SIG_DFL);
    m_notifier.reset();
    close(std::exchange(wakeDescriptor, -1));
}
