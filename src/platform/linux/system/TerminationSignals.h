#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread. At most one at a time.
///
/// Handlers and not a signal mask, because programs that this one starts would inherit the mask.
class TerminationSignals {
public:
    explicit TerminationSignals(std::function<void()> handler);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};
