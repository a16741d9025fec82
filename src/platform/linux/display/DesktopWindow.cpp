#include "platform/DesktopWindow.h"

#include "platform/linux/display/DisplayServer.h"
#include "platform/linux/video/PlayerLayerViewBody.h"

#include <utility>

class DesktopWindow::Body {
public:
    Body(const QRect& frame, const Screen& screen);
    ~Body();
    Body(const Body&) = delete;
    Body& operator=(const Body&) = delete;

    void setCollectionBehavior(WindowCollectionBehavior behavior);
    void order(std::optional<StackingOrder> order);
    void setClickAction(std::function<void()> action);
    void addSubview(std::unique_ptr<PlayerLayerView> view);

private:
    void setTargets();

    DisplayServer& m_display;
    WindowState m_wish;
    WindowViews m_views;
    std::unique_ptr<NativeWindow> m_native;
};

DesktopWindow::Body::Body(const QRect& frame, const Screen& screen)
    : m_display(DisplayServer::shared()),
      m_wish{frame, std::nullopt, {}},
      m_views(frame.size()),
      m_native(m_display.takeWindow(screen, m_wish))
{
    m_native->setViews(&m_views);
    m_native->setTargetHandler([this] { setTargets(); });
    m_display.wish(*m_native, m_wish);
}

DesktopWindow::Body::~Body()
{
    m_display.giveBack(std::move(m_native));
}

void DesktopWindow::Body::setCollectionBehavior(WindowCollectionBehavior behavior)
{
    m_wish.behavior = behavior;
    m_display.wish(*m_native, m_wish);
}

void DesktopWindow::Body::order(std::optional<StackingOrder> order)
{
    m_wish.order = order;
    m_display.wish(*m_native, m_wish);
}

void DesktopWindow::Body::setClickAction(std::function<void()> action)
{
    m_views.setClickAction(std::move(action));
}

void DesktopWindow::Body::addSubview(std::unique_ptr<PlayerLayerView> view)
{
    view->body().setPressHandler([this] {
        m_display.holds().noticePerson();
        m_views.beginClick();
    });
    m_views.add(std::move(view));
    setTargets();
}

void DesktopWindow::Body::setTargets()
{
    for (const auto& view : m_views.all())
        view->body().setTarget(m_native->target(view->frame()));
}

DesktopWindow::DesktopWindow(const QRect& contentRect,
    WindowStyle style,
    WindowBacking backing,
    Defer defer,
    const Screen& screen)
    : m_body(std::make_unique<Body>(contentRect.translated(screen.frame.topLeft()), screen))
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
    Q_UNUSED(level) // there is one, which every display has in its own way
}

void DesktopWindow::orderBack()
{
    m_body->order(StackingOrder::Back);
}

void DesktopWindow::orderFront()
{
    m_body->order(StackingOrder::Front);
}

void DesktopWindow::orderOut()
{
    m_body->order(std::nullopt);
}

void DesktopWindow::setClickAction(std::function<void()> action)
{
    m_body->setClickAction(std::move(action));
}

void DesktopWindow::addSubview(std::unique_ptr<PlayerLayerView> view)
{
    m_body->addSubview(std::move(view));
}
