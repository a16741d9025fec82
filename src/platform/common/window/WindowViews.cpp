#include "platform/common/window/WindowViews.h"

#include <algorithm>
#include <utility>

void WindowViews::add(std::unique_ptr<PlayerLayerView> view)
{
    m_views.push_back(std::move(view));
}

void WindowViews::expose(const QRect& dirtyRect)
{
    for (const auto& view : m_views) {
        if (view->frame().intersects(dirtyRect))
            view->drawRect(dirtyRect);
    }
}

PlayerLayerView* WindowViews::viewAt(const QPoint& location) const
{
    // The one added last is in front.
    const auto view = std::find_if(m_views.rbegin(), m_views.rend(), [&](const auto& candidate) {
        return candidate->frame().contains(location);
    });
    return view == m_views.rend() ? nullptr : view->get();
}

void WindowViews::press(const QPoint& location)
{
    m_isClickBegun = false;
    if (auto* const view = viewAt(location))
        view->mouseDown({location});
}

void WindowViews::release(const QPoint& location)
{
    const bool isInside = QRect(QPoint(), m_size).contains(location);
    if (std::exchange(m_isClickBegun, false) && isInside && m_clickAction)
        m_clickAction();
}

void WindowViews::touch(const QPoint& location)
{
    if (auto* const view = viewAt(location))
        view->touchesBegan({location});
}
