#include "platform/linux/display/x11/X11DesktopIcons.h"

#include <xcb/shape.h>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A program that starts, or changes its picture, does so in steps.
constexpr auto untilComplaint = 3s;

} // namespace

X11DesktopIcons::X11DesktopIcons(X11Connection& connection, X11ForeignDesktops& desktops)
    : m_connection(connection),
      m_desktops(desktops),
      m_isPossible(hasExtension(connection.get(), xcb_shape_id) &&
                   X11DesktopPicture::isPossible(connection)),
      m_complaint(untilComplaint, [this] {
          if (std::exchange(m_problem, currentProblem()) != m_problem)
              Q_EMIT problemChanged();
      })
{
    connect(&m_desktops, &X11ForeignDesktops::changed, this, &X11DesktopIcons::update);
    connect(&m_connection, &X11Connection::rootPropertyChanged, this, [this](quint32 atom) {
        if (m_pictures.empty() || atom != m_connection.atom("_XROOTPMAP_ID"))
            return;
        for (const auto& [window, picture] : m_pictures)
            picture->noteNewBackdrop();
    });
}

Disposable X11DesktopIcons::follow()
{
    if (m_followerCount++ == 0)
        update();
    return Disposable([this] {
        if (--m_followerCount == 0)
            update();
    });
}

void X11DesktopIcons::setIsPaused(bool isPaused)
{
    m_isPaused = isPaused;
    for (const auto& [window, picture] : m_pictures)
        picture->setIsPaused(isPaused);
}

void X11DesktopIcons::update()
{
    auto former = std::exchange(m_pictures, {});
    for (const auto& desktop : m_desktops.all()) {
        if (m_followerCount == 0 || !m_isPossible)
            break;
        auto& picture = former[desktop.window];
        if (!picture || picture->desktop() != desktop)
            picture =
                std::make_unique<X11DesktopPicture>(m_connection, desktop, [this] { collect(); });
        picture->setIsPaused(m_isPaused);
        m_pictures.emplace(desktop.window, std::move(picture));
    }
    collect();
}

void X11DesktopIcons::collect()
{
    QRegion area;
    for (const auto& [window, picture] : m_pictures)
        area += picture->icons();
    if (currentProblem() == m_problem)
        m_complaint.cancel();
    else if (!m_complaint.isPending())
        m_complaint.call();
    if (std::exchange(m_area, area) != area)
        Q_EMIT areaChanged();
}

QString X11DesktopIcons::currentProblem() const
{
    if (m_followerCount == 0 || m_desktops.all().empty())
        return {};
    if (!m_isPossible)
        return u"The desktop's icons are behind the video: the X server lacks an extension for "
               "holes in windows (Shape, Composite, Damage, XFixes)."_s;
    const auto isUnderstood = [](const auto& entry) { return entry.second->isUnderstood(); };
    if (!std::ranges::all_of(m_pictures, isUnderstood))
        return u"The desktop's icons are behind the video: they cannot be told from the desktop's "
               "own picture."_s;
    return {};
}
