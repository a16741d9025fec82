#include "service/HeartbeatSchedule.h"

#include <algorithm>

using namespace std::chrono_literals;

HeartbeatSchedule::HeartbeatSchedule(quint32 draw)
    : m_offset(static_cast<qint64>(draw / 8589934591.0 * 120.0 * 1000.0))
{
}

std::optional<QDateTime> HeartbeatSchedule::next(const QDateTime& now)
{
    const auto today = now.toLocalTime().date();
    if (today == m_due && today != m_reported) {
        auto date = fireDate(today);
        if (date && *date > now)
            return date;
    }
    auto day = today.addDays(1);
    if (day == m_reported) // the clock was set back over midnight
        day = day.addDays(1);

    // A place that changes to the other side of the date line leaves a day out.
    constexpr int daysToTry = 3;
    for (int i = 0; i < daysToTry; ++i, day = day.addDays(1)) {
        if (auto date = fireDate(day)) {
            m_due = day;
            return date;
        }
    }
    return std::nullopt;
}

void HeartbeatSchedule::markReported(const QDateTime& now)
{
    m_reported = std::max(m_due, now.toLocalTime().date());
}

std::optional<QDateTime> HeartbeatSchedule::fireDate(const QDate& day) const
{
    const auto start = day.startOfDay();
    if (!start.isValid())
        return std::nullopt;
    return start.addMSecs(m_offset.count());
}
