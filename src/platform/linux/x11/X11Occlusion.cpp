#include "platform/linux/x11/X11Occlusion.h"

#include "platform/linux/Occlusion.h"
#include "platform/linux/x11/X11WindowStack.h"

#include <algorithm>
#include <array>
#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr auto quiet = 250ms; // after the last change
constexpr auto patience = 1s; // after the first, when there is no end to them

} // namespace

X11Occlusion& X11Occlusion::shared(X11Connection& connection)
{
    static X11Occlusion occlusion(connection, X11WindowManager::shared(connection));
    return occlusion;
}

X11Occlusion::X11Occlusion(X11Connection& connection, X11WindowManager& windowManager)
    : m_connection(connection), m_windowManager(windowManager)
{
    m_settling.setSingleShot(true);
    connect(&m_settling, &QTimer::timeout, this, &X11Occlusion::look);
    connect(&m_connection, &X11Connection::rootChildrenChanged, this, &X11Occlusion::noteChange);
    connect(&m_connection, &X11Connection::rootPropertyChanged, this, [this](quint32 atom) {
        static constexpr std::array names{
            "_NET_CLIENT_LIST_STACKING", "_NET_CURRENT_DESKTOP", "_NET_ACTIVE_WINDOW"};
        if (std::ranges::any_of(
                names, [&](const char* name) { return m_connection.atom(name) == atom; }))
            noteChange();
    });
}

Disposable X11Occlusion::add(xcb_window_t window)
{
    m_shown.insert(window);
    noteChange();
    return Disposable([this, window] {
        m_shown.erase(window);
        noteChange();
    });
}

void X11Occlusion::noteChange()
{
    if (m_shown.empty() && !m_isCovered) {
        m_settling.stop();
        return;
    }
    if (!m_settling.isActive())
        m_latest.setRemainingTime(patience);
    m_settling.start(std::min<std::chrono::milliseconds>(quiet,
        std::chrono::duration_cast<std::chrono::milliseconds>(m_latest.remainingTimeAsDuration())));
}

void X11Occlusion::look()
{
    if (m_shown.empty()) {
        m_isCovered = false; // as whatever is shown next is taken to be
        return;
    }
    const auto isCovered = Occlusion::isEverythingCovered(
        X11WindowStack::read(m_connection, m_windowManager, m_shown));
    if (!isCovered || *isCovered == m_isCovered)
        return;
    m_isCovered = *isCovered;
    Q_EMIT changed();
}
