#include "platform/linux/display/x11/X11Occlusion.h"

#include "platform/linux/display/Occlusion.h"
#include "platform/linux/display/x11/X11WindowStack.h"

#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr auto quiet = 250ms; // after the last change
constexpr auto patience = 1s; // after the first, when there is no end to them

} // namespace

X11Occlusion::X11Occlusion(X11Connection& connection, X11WindowManager& windowManager)
    : m_connection(connection),
      m_windowManager(windowManager),
      m_settling(
          quiet, [this] { look(); }, patience)
{
    connect(&m_connection, &X11Connection::rootChildrenChanged, this, &X11Occlusion::noteChange);
    connect(&m_connection, &X11Connection::rootPropertyChanged, this, [this](quint32 atom) {
        const auto& hints = m_connection.hints();
        if (atom == hints._NET_CLIENT_LIST_STACKING || atom == hints._NET_CURRENT_DESKTOP ||
            atom == hints._NET_ACTIVE_WINDOW)
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
    if (m_shown.empty() && !m_isCovered)
        m_settling.cancel();
    else
        m_settling.call();
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
