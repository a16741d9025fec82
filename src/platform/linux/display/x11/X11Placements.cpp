#include "platform/linux/display/x11/X11Placements.h"

#include <algorithm>

using namespace std::chrono_literals;

namespace {

constexpr auto comingBack = 3s;
constexpr auto longAgo = 10s;
constexpr std::size_t mostChanges = 3; // until they were long ago

std::int64_t pixelCount(const QRegion& region)
{
    std::int64_t count = 0;
    for (const auto& part : region)
        count += std::int64_t{part.width()} * part.height();
    return count;
}

} // namespace

X11Placements::X11Placements(X11ForeignDesktops& desktops, X11WindowManager& windowManager)
    : m_desktops(desktops), m_windowManager(windowManager), m_decision(seen())
{
    m_retreat.setSingleShot(true);
    connect(&m_retreat, &QTimer::timeout, this, [this] { take(seen()); });
    connect(&m_desktops, &X11ForeignDesktops::changed, this, &X11Placements::decide);
    connect(&m_windowManager,
        &X11WindowManager::desktopWindowSupportChanged,
        this,
        &X11Placements::decide);
    connect(&m_windowManager, &X11WindowManager::nameChanged, this, &X11Placements::decide);
}

/// Small ones, as monitors of the system's load are, stay in front. One that still has the size of
/// a monitor that is gone is not small.
Placement X11Placements::of(const QRect& frame) const
{
    const bool isHidden = 4 * pixelCount(m_decision.opaqueArea & frame) > pixelCount(frame);
    return isHidden || m_decision.isInFrontEverywhere ? Placement::InFront : Placement::Behind;
}

/// Cinnamon's program for the icons ends when it finds another window of type desktop, and muffin
/// shows two of them in the order in which they came, however they are stacked.
X11Placements::Decision X11Placements::seen() const
{
    Decision decision;
    for (const auto& desktop : m_desktops.all())
        decision.opaqueArea += desktop.opaqueArea;
    decision.isInFrontEverywhere = m_windowManager.name().contains("Muffin");
    return decision;
}

void X11Placements::decide()
{
    const auto wanted = seen();
    const Decision advanced{m_decision.opaqueArea + wanted.opaqueArea,
        m_decision.isInFrontEverywhere || wanted.isInFrontEverywhere};
    take(advanced);
    if (advanced == wanted)
        m_retreat.stop();
    else if (!m_retreat.isActive())
        m_retreat.start(timeUntilRetreat(wanted));
}

void X11Placements::take(const Decision& decision)
{
    if (decision == m_decision)
        return;
    m_decision = decision;
    m_changes.emplace_back(longAgo);
    if (m_changes.size() > mostChanges)
        m_changes.pop_front();
    Q_EMIT changed();
}

/// So late that this change and the one back in front, which is never put off, are not too many.
std::chrono::milliseconds X11Placements::timeUntilRetreat(const Decision& wanted) const
{
    std::chrono::milliseconds time = wanted.opaqueArea == m_decision.opaqueArea ? 0ms : comingBack;
    constexpr auto allowedBefore = mostChanges - 2;
    if (m_changes.size() > allowedBefore) {
        const auto& last = m_changes[m_changes.size() - 1 - allowedBefore];
        time = std::max(time, std::chrono::milliseconds(last.remainingTime()));
    }
    return time;
}
