#include "platform/linux/display/x11/X11DesktopWindow.h"

#include "base/Observe.h"

#include "platform/linux/display/x11/X11PictureVisual.h"
#include "platform/linux/display/x11/X11WindowHints.h"
#include "platform/linux/display/x11/X11WindowInput.h"
#include "platform/linux/display/x11/X11WindowShape.h"

#include <xcb/xinput.h>

#include <array>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// How long to wait until a window manager has let go of a window: without a word of it, and after
/// its word, because it may remove more.
constexpr auto longestWithdrawal = 500ms;
constexpr auto endOfWithdrawal = 50ms;

} // namespace

X11DesktopWindow::X11DesktopWindow(
    const X11DesktopServices& services, const Screen& screen, const WindowState& wish)
    : NativeWindow(screen),
      m_services(services),
      m_connection(services.connection),
      m_committed{wish.frame, std::nullopt, {}}
{
    create();
    X11WindowHints::describe(m_connection, m_window);
    X11WindowHints::describeFrame(m_connection, m_window, m_committed.frame, m_placement);
    X11WindowInput::select(m_connection, m_window);
    listen();
    // The render thread draws through a connection of its own, so the window has to be there.
    m_connection.synchronize();
}

X11DesktopWindow::~X11DesktopWindow()
{
    m_events.reset();
    xcb_destroy_window(m_connection.get(), m_window);
    xcb_flush(m_connection.get());
}

void X11DesktopWindow::create()
{
    auto* const x11 = m_connection.get();
    const auto& visual = X11PictureVisual::of(m_connection);
    const auto& frame = m_committed.frame;
    m_window = xcb_generate_id(x11);
    m_surface = std::make_shared<X11Surface>(m_window);
    // No background: the server then leaves on the screen what was there until the first picture
    // comes, instead of flashing a colour.
    const std::array<std::uint32_t, 5> values{XCB_BACK_PIXMAP_NONE,
        0,                      // border pixel, because the depth may differ from the root's
        XCB_GRAVITY_NORTH_WEST, // what is shown stays when the size changes
        XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE |
            // for presses that a window manager grabs and gives back, as mutter does
            XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE,
        visual.colormap};
    xcb_create_window(x11,
        visual.depth,
        m_window,
        m_connection.root(),
        static_cast<std::int16_t>(frame.x()),
        static_cast<std::int16_t>(frame.y()),
        static_cast<std::uint16_t>(frame.width()),
        static_cast<std::uint16_t>(frame.height()),
        0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT,
        visual.identifier,
        XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY | XCB_CW_EVENT_MASK |
            XCB_CW_COLORMAP,
        values.data());
}

void X11DesktopWindow::listen()
{
    m_events =
        m_connection.watch(m_window, [this](const xcb_generic_event_t& event) { handle(event); });
    m_withdrawal.setSingleShot(true);
    m_withdrawal.callOnTimeout([this] { showAgain(); });
    m_managerChanges =
        observe(m_services.windowManager, &X11WindowManager::desktopWindowSupportChanged, [this] {
            if (m_isMapped)
                unmap();
            showAgain();
        });
    m_placementChanges =
        observe(m_services.placements, &X11Placements::changed, [this] { followPlacement(); });
    m_iconChanges = observe(m_services.icons, &X11DesktopIcons::areaChanged, [this] { shape(); });
    m_presses = observe(m_services.presses, &X11DesktopPresses::pressed, [this](QPoint point) {
        if (views() && m_listening && m_shown && m_committed.frame.contains(point))
            views()->press(point - m_committed.frame.topLeft());
    });
    m_releases = observe(m_services.presses, &X11DesktopPresses::released, [this](QPoint point) {
        if (views() && m_listening)
            views()->release(point - m_committed.frame.topLeft());
    });
}

void X11DesktopWindow::handle(const xcb_generic_event_t& event)
{
    constexpr std::uint8_t sentByClient = 0x80;
    switch (event.response_type & static_cast<std::uint8_t>(~sentByClient)) {
    case XCB_MAP_NOTIFY:
        noteShown();
        break;
    case XCB_UNMAP_NOTIFY: // also by a window manager that shows the bare desktop, or reparents
        m_shown.reset();
        tellTargetChange();
        break;
    case XCB_PROPERTY_NOTIFY:
        if (m_withdrawal.isActive() &&
            reinterpret_cast<const xcb_property_notify_event_t&>(event).atom ==
                m_connection.atom("WM_STATE"))
            m_withdrawal.start(endOfWithdrawal);
        break;
    default:
        if (views())
            handleForViews(event);
        break;
    }
}

void X11DesktopWindow::handleForViews(const xcb_generic_event_t& event)
{
    switch (event.response_type & 0x7f) {
    case XCB_EXPOSE: {
        const auto& area = reinterpret_cast<const xcb_expose_event_t&>(event);
        m_services.occlusion.noteExposed(m_window);
        views()->expose({area.x, area.y, area.width, area.height});
        break;
    }
    case XCB_BUTTON_PRESS: {
        const auto& button = reinterpret_cast<const xcb_button_press_event_t&>(event);
        if (button.detail == X11WindowInput::primaryButton)
            views()->press({button.event_x, button.event_y});
        else
            X11WindowInput::passOn(
                m_connection, desktopBelow({button.root_x, button.root_y}), button);
        break;
    }
    case XCB_BUTTON_RELEASE: {
        const auto& button = reinterpret_cast<const xcb_button_release_event_t&>(event);
        if (button.detail == X11WindowInput::primaryButton)
            views()->release({button.event_x, button.event_y});
        break;
    }
    case XCB_GE_GENERIC: {
        const auto& touched = reinterpret_cast<const xcb_input_touch_begin_event_t&>(event);
        constexpr int fraction = 65536; // FP1616
        if (touched.event_type == XCB_INPUT_TOUCH_BEGIN)
            views()->touch({touched.event_x / fraction, touched.event_y / fraction});
        break;
    }
    default:
        break;
    }
}

/// Null where there is none, or where it is in front of us and lets the press through.
const X11ForeignDesktop* X11DesktopWindow::desktopBelow(const QPoint& point) const
{
    const bool isInFront =
        m_placement == Placement::InFront || m_committed.order == StackingOrder::Front;
    return isInFront ? m_services.desktops.at(point) : nullptr;
}

void X11DesktopWindow::commit(const WindowState& wish, bool isOrderedAnew)
{
    const auto former = std::exchange(m_committed, wish);
    if (former.frame != wish.frame)
        moveTo(wish.frame);
    if (former.behavior != wish.behavior && m_isMapped)
        X11WindowHints::describeLayer(m_connection, m_window, m_placement, wish.behavior);
    showOrHide(isOrderedAnew);
    followPlacement();
    shape();
}

void X11DesktopWindow::moveTo(const QRect& frame)
{
    X11WindowHints::describeFrame(m_connection, m_window, frame, m_placement);
    const std::array<std::uint32_t, 4> values{static_cast<std::uint32_t>(frame.x()),
        static_cast<std::uint32_t>(frame.y()),
        static_cast<std::uint32_t>(frame.width()),
        static_cast<std::uint32_t>(frame.height())};
    xcb_configure_window(m_connection.get(),
        m_window,
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
            XCB_CONFIG_WINDOW_HEIGHT,
        values.data());
    tellTargetChange();
}

FrameTarget X11DesktopWindow::target(const QRect& viewFrame) const
{
    if (!m_shown || m_isCovered)
        return {}; // nobody would see it
    return {m_surface, m_committed.frame.size(), viewFrame, 1};
}

void X11DesktopWindow::showOrHide(bool isOrderedAnew)
{
    const auto& order = m_committed.order;
    const bool wasMapped = m_isMapped;
    if (order && !m_isMapped && !m_withdrawal.isActive())
        map();
    if (order && m_isMapped && (isOrderedAnew || !wasMapped))
        restack(*order);
    else if (!order && m_isMapped)
        unmap();
}

void X11DesktopWindow::showAgain()
{
    showOrHide(true);
    shape();
    xcb_flush(m_connection.get());
}

/// Window managers look at the type when a window comes, so it comes anew.
void X11DesktopWindow::followPlacement()
{
    if (!m_isMapped || !m_isManaged || m_services.placements.of(m_committed.frame) == m_placement)
        return;
    unmap();
    showAgain();
}

void X11DesktopWindow::map()
{
    using DesktopWindowSupport = X11WindowManager::DesktopWindowSupport;
    const auto support = m_services.windowManager.desktopWindowSupport();
    if (support == DesktopWindowSupport::Impossible)
        return;
    m_isMapped = true;
    m_isManaged = support == DesktopWindowSupport::Managed;
    m_placement = m_isManaged ? m_services.placements.of(m_committed.frame) : Placement::Behind;
    const std::uint32_t bypasses = m_isManaged ? 0 : 1;
    xcb_change_window_attributes(m_connection.get(), m_window, XCB_CW_OVERRIDE_REDIRECT, &bypasses);
    X11WindowHints::describeFrame(m_connection, m_window, m_committed.frame, m_placement);
    X11WindowHints::describeLayer(m_connection, m_window, m_placement, m_committed.behavior);
    // Below everything from the first moment; who maps in front is raised afterwards.
    restack(StackingOrder::Back);
    xcb_map_window(m_connection.get(), m_window);
}

void X11DesktopWindow::noteShown()
{
    m_isCovered = false;
    m_shown.reset();
    m_shown = m_services.occlusion.add(m_window, [this](bool isCovered) {
        m_isCovered = isCovered;
        tellTargetChange();
    });
    letInputThrough();
    tellTargetChange();
}

/// To another program's desktop behind us, whose menus and icons shall be used as ever.
void X11DesktopWindow::letInputThrough()
{
    using X11WindowShape::Input;
    const auto input = m_placement == Placement::InFront ? Input::LetThrough : Input::Taken;
    const bool isLetThrough = input == Input::LetThrough;
    if (!isLetThrough && !m_isInputShaped)
        return; // as windows are made
    m_listening.reset();
    m_isInputShaped = X11WindowShape::setInput(m_connection, m_window, input) && isLetThrough;
    if (m_isInputShaped)
        m_listening = m_services.presses.listen();
}

/// The icons of the desktop behind us are seen through holes.
void X11DesktopWindow::shape()
{
    const bool isInFront = m_isMapped && m_placement == Placement::InFront;
    if (!isInFront || m_committed.order != StackingOrder::Back)
        m_following.reset();
    else if (!m_following)
        m_following = m_services.icons.follow();
    const auto holes =
        m_following
            ? (m_services.icons.area() & m_committed.frame).translated(-m_committed.frame.topLeft())
            : QRegion();
    const QRect all(QPoint(), m_committed.frame.size());
    const auto shape = holes.isEmpty() ? QRegion() : QRegion(all) - holes;
    if (std::exchange(m_shape, shape) == shape)
        return;
    X11WindowShape::setArea(m_connection, m_window, shape);
    xcb_flush(m_connection.get());
}

void X11DesktopWindow::restack(StackingOrder order)
{
    if ((!m_isManaged || m_placement == Placement::InFront) && order == StackingOrder::Front) {
        // Nobody keeps a window that bypasses the window manager within a layer, and the top of the
        // stack would cover people's windows. Where no desktop type is known, nothing draws icons
        // either; and in front of a desktop it covers the icons anyway.
        order = StackingOrder::Back;
    }
    const std::uint32_t mode =
        order == StackingOrder::Back ? XCB_STACK_MODE_BELOW : XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection.get(), m_window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
}

void X11DesktopWindow::unmap()
{
    using DesktopWindowSupport = X11WindowManager::DesktopWindowSupport;
    m_isMapped = false;
    m_shown.reset();
    m_listening.reset();
    tellTargetChange();
    xcb_unmap_window(m_connection.get(), m_window);
    if (!m_isManaged)
        return;
    // Tells the window manager that it is meant for good (ICCCM 4.1.4).
    xcb_unmap_notify_event_t notice{};
    notice.response_type = XCB_UNMAP_NOTIFY;
    notice.event = m_connection.root();
    notice.window = m_window;
    xcb_send_event(m_connection.get(),
        0,
        m_connection.root(),
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
        reinterpret_cast<const char*>(&notice));
    // It removes what describes the window when it reads that, which is not to be lost.
    if (m_services.windowManager.desktopWindowSupport() == DesktopWindowSupport::Managed)
        m_withdrawal.start(longestWithdrawal);
}
