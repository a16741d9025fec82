#include "platform/DesktopWindow.h"

#include "platform/linux/DesktopWindowBody.h"
#include "platform/linux/x11/X11DesktopWindow.h"

#include <algorithm>
#include <utility>

DesktopWindow::DesktopWindow(const QRect& contentRect,
    WindowStyle style,
    WindowBacking backing,
    Defer defer,
    const Screen& screen)
    : m_body(std::make_unique<X11DesktopWindow>(contentRect.translated(screen.frame.topLeft())))
{
    // Neither style has a title bar or a border, the display always buffers, and the window is
    // made at once: there is nothing to choose.
    Q_UNUSED(style)
    Q_UNUSED(backing)
    Q_UNUSED(defer)
}

DesktopWindow::~DesktopWindow() = default;

void DesktopWindow::setCollectionBehavior(WindowCollectionBehavior behavior)
{
    m_body->setCollectionBehavior(behavior);
}

void DesktopWindow::setLevel(WindowLevel level)
{
    m_body->setLevel(level);
}

void DesktopWindow::orderBack()
{
    m_body->show(Body::Order::Back);
}

void DesktopWindow::orderFront()
{
    m_body->show(Body::Order::Front);
}

void DesktopWindow::orderOut()
{
    m_body->hide();
}

void DesktopWindow::setClickAction(std::function<void()> action)
{
    m_body->setClickAction(std::move(action));
}

void DesktopWindow::addSubview(std::unique_ptr<PlayerLayerView> view)
{
    m_body->addSubview(std::move(view));
}

void DesktopWindow::Body::addSubview(std::unique_ptr<PlayerLayerView> view)
{
    view->body().setWindow({identifier(), m_size}, [this] { m_isClickBegun = true; });
    m_views.push_back(std::move(view));
}

void DesktopWindow::Body::expose(const QRect& dirtyRect)
{
    for (const auto& view : m_views) {
        if (view->frame().intersects(dirtyRect))
            view->drawRect(dirtyRect);
    }
}

PlayerLayerView* DesktopWindow::Body::viewAt(const QPoint& location) const
{
    // The one added last is in front.
    const auto view = std::find_if(m_views.rbegin(), m_views.rend(), [&](const auto& candidate) {
        return candidate->frame().contains(location);
    });
    return view == m_views.rend() ? nullptr : view->get();
}

void DesktopWindow::Body::press(const QPoint& location)
{
    m_isClickBegun = false;
    if (auto* const view = viewAt(location))
        view->mouseDown({location});
}

void DesktopWindow::Body::release(const QPoint& location)
{
    const bool isInside = QRect(QPoint(), m_size).contains(location);
    if (std::exchange(m_isClickBegun, false) && isInside && m_clickAction)
        m_clickAction();
}

void DesktopWindow::Body::touch(const QPoint& location)
{
    if (auto* const view = viewAt(location))
        view->touchesBegan({location});
}
