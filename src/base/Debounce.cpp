#include "base/Debounce.h"

#include <algorithm>
#include <utility>

Debounce::Debounce(std::chrono::milliseconds quiet,
    std::function<void()> action,
    std::optional<std::chrono::milliseconds> patience)
    : m_quiet(quiet), m_patience(patience)
{
    m_timer.setSingleShot(true);
    m_timer.callOnTimeout(std::move(action));
}

void Debounce::call()
{
    if (!m_patience) {
        m_timer.start(m_quiet);
        return;
    }
    if (!isPending())
        m_latest.setRemainingTime(*m_patience);
    m_timer.start(std::min(m_quiet, std::chrono::milliseconds(m_latest.remainingTime())));
}

void Debounce::cancel()
{
    m_timer.stop();
}
