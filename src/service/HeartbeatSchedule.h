#pragma once

#include <QDate>
#include <QDateTime>

#include <chrono>
#include <optional>

/// When the daily report is due: at the start of each day in the user's time zone, plus an offset
/// that is drawn once, so that not everybody reports in the same second.
///
/// Days are counted by the calendar. The local time of the report therefore stays the same when
/// daylight saving begins or ends; where that removes midnight itself, the day starts when the
/// clocks say it does.
class HeartbeatSchedule {
public:
    /// `draw` is uniform over all 32-bit numbers; the offset is `draw` / (2^33 - 1) * 120 seconds,
    /// that is, less than a minute.
    explicit HeartbeatSchedule(quint32 draw);

    std::chrono::milliseconds offset() const { return m_offset; }

    /// The first report after this moment, at the next midnight at the earliest unless the one that
    /// has been waited for is still to come. A day that has been reported already is passed over.
    /// None when the calendar knows no such day.
    std::optional<QDateTime> next(const QDateTime& now);
    /// The report that was due has been sent at this moment, which may be days later.
    void markReported(const QDateTime& now);

private:
    std::optional<QDateTime> fireDate(const QDate& day) const;

    std::chrono::milliseconds m_offset;
    QDate m_due;      // the day of the report that is waited for
    QDate m_reported; // the last day that was reported
};
