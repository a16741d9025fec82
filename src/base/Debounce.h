#pragma once

#include <QDeadlineTimer>
#include <QTimer>

#include <chrono>
#include <functional>
#include <optional>

/// Runs an action once calls have stopped coming, on the main loop: one look for a burst of events.
/// What is pending when the object dies does not run any more. The action may call or cancel.
class Debounce {
public:
    /// The action runs `quiet` after the last call. Where the calls may never stop it runs
    /// `patience` after the first one at the latest; the next call is a first one again.
    Debounce(std::chrono::milliseconds quiet,
        std::function<void()> action,
        std::optional<std::chrono::milliseconds> patience = std::nullopt);
    Debounce(const Debounce&) = delete;
    Debounce& operator=(const Debounce&) = delete;

    void call();
    void cancel();
    bool isPending() const { return m_timer.isActive(); }

private:
    std::chrono::milliseconds m_quiet;
    std::optional<std::chrono::milliseconds> m_patience;
    QTimer m_timer;
    QDeadlineTimer m_latest; // for the calls that are pending
};
