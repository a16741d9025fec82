#pragma once

#include <QDateTime>
#include <QObject>

#include <memory>

/// Fires once at a date, as the wall clock shows it: a machine that slept over the date, or a clock
/// that was set past it, makes it fire at once and not as much later as the sleep was long. Fires
/// from the main loop, also while a menu is open.
class WallClockTimer : public QObject {
    Q_OBJECT

public:
    WallClockTimer();
    ~WallClockTimer() override;

    /// Replaces the date that was waited for. One that has passed fires as soon as the loop runs.
    void setFireDate(const QDateTime& date);

Q_SIGNALS:
    void fired();
    /// The clock was set, to before the date; that is still waited for.
    void clockDidChange();

private:
    class Body;
    std::unique_ptr<Body> m_body;
};
