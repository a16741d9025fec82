#include "platform/WallClockTimer.h"

#include <QSocketNotifier>

#include <cerrno>
#include <cstdint>
#include <optional>
#include <sys/timerfd.h>
#include <unistd.h>

/// The kernel keeps an absolute timer on the real-time clock, and tells when that clock is set.
class WallClockTimer::Body {
public:
    Body()
        : descriptor(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)),
          notifier(descriptor, QSocketNotifier::Read)
    {
        if (descriptor < 0)
            qFatal("The system gives no timers.");
    }
    ~Body()
    {
        notifier.setEnabled(false);
        close(descriptor);
    }
    Body(const Body&) = delete;
    Body& operator=(const Body&) = delete;

    void arm(const QDateTime& date)
    {
        fireDate = date;
        const auto milliseconds = std::max<qint64>(date.toMSecsSinceEpoch(), 1); // 0 disarms
        itimerspec time{};
        time.it_value = {milliseconds / 1000, milliseconds % 1000 * 1'000'000};
        timerfd_settime(descriptor, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &time, nullptr);
    }

    /// Whether the timer woke us up because the clock was set.
    bool readClockChange() const
    {
        std::uint64_t expirations = 0;
        return read(descriptor, &expirations, sizeof expirations) < 0 && errno == ECANCELED;
    }

    int descriptor;
    QSocketNotifier notifier;
    std::optional<QDateTime> fireDate; // while it is waited for
};

WallClockTimer::WallClockTimer() : m_body(std::make_unique<Body>())
{
    connect(&m_body->notifier, &QSocketNotifier::activated, this, [this] {
        const bool clockChanged = m_body->readClockChange();
        if (!m_body->fireDate)
            return;
        if (QDateTime::currentDateTime() >= *m_body->fireDate) {
            m_body->fireDate.reset();
            Q_EMIT fired();
        } else {
            m_body->arm(*m_body->fireDate);
            if (clockChanged)
                Q_EMIT clockDidChange();
        }
    });
}

WallClockTimer::~WallClockTimer() = default;

void WallClockTimer::setFireDate(const QDateTime& date)
{
    m_body->arm(date);
}
