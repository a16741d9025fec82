#include "platform/linux/display/x11/X11Occlusion.h"

#include "platform/linux/display/Occlusion.h"
#include "platform/linux/display/x11/X11WindowStack.h"

#include <algorithm>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto quiet = 250ms; // after the last change
constexpr auto patience = 1s; // after the first, when there is no end to them
/// A picture that is wanted again is to be there at once.
constexpr auto shortQuiet = 40ms;
constexpr auto shortPatience = 200ms;

} // namespace

X11Occlusion::X11Occlusion(X11Connection& connection, X11WindowManager& windowManager)
    : m_connection(connection),
      m_windowManager(windowManager),
      m_settling(
          quiet, [this] { lookAndTell(); }, patience),
      m_uncovering(
          shortQuiet, [this] { look(); }, shortPatience)
{
    connect(&m_connection, &X11Connection::rootChildrenChanged, this, &X11Occlusion::noteChange);
    connect(&m_connection, &X11Connection::rootPropertyChanged, this, [this](quint32 atom) {
        const auto& hints = m_connection.hints();
        if (atom == hints._NET_CLIENT_LIST_STACKING || atom == hints._NET_CURRENT_DESKTOP ||
            atom == hints._NET_ACTIVE_WINDOW)
            noteChange();
    });
}

Disposable X11Occlusion::add(xcb_window_t window, CoveredHandler covered)
{
    m_shown[window].covered = std::move(covered);
    noteChange();
    return Disposable([this, window] {
        m_shown.erase(window);
        noteChange();
    });
}

void X11Occlusion::noteExposed(xcb_window_t window)
{
    setIsCovered(window, false);
    noteChange();
}

bool X11Occlusion::isAnyCovered() const
{
    return std::ranges::any_of(m_shown, [](const auto& entry) { return entry.second.isCovered; });
}

void X11Occlusion::noteChange()
{
    if (m_shown.empty() && !m_isEverythingCovered) {
        m_settling.cancel();
        m_uncovering.cancel();
        return;
    }
    m_settling.call();
    if (isAnyCovered())
        m_uncovering.call();
}

void X11Occlusion::lookAndTell()
{
    look();
    const bool isEverythingCovered =
        !m_shown.empty() &&
        std::ranges::all_of(m_shown, [](const auto& entry) { return entry.second.isCovered; });
    const bool wasCovered = std::exchange(m_isEverythingCovered, isEverythingCovered);
    // Whatever is shown next is taken to be seen.
    if (wasCovered != isEverythingCovered && !m_shown.empty())
        Q_EMIT changed();
}

void X11Occlusion::look()
{
    if (m_shown.empty())
        return;
    std::set<xcb_window_t> ours;
    for (const auto& [window, shown] : m_shown)
        ours.insert(window);
    const auto stack = X11WindowStack::read(m_connection, m_windowManager, ours);
    const auto seen = Occlusion::seenWindows(stack);
    for (const auto& window : stack) {
        if (window.kind == StackedWindow::Kind::Ours)
            setIsCovered(window.name, !seen.contains(window.name));
    }
}

void X11Occlusion::setIsCovered(xcb_window_t window, bool isCovered)
{
    const auto shown = m_shown.find(window);
    if (shown == m_shown.end() || std::exchange(shown->second.isCovered, isCovered) == isCovered)
        return;
    shown->second.covered(isCovered);
    Q_EMIT windowChanged();
}
