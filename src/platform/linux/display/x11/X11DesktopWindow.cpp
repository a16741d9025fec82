#include "platform/linux/display/x11/X11DesktopWindow.h"

#include "base/Observe.h"

#include <QSysInfo>

#include <xcb/xcb_icccm.h>
#include <xcb/xinput.h>

#include <array>
#include <string_view>
#include <unistd.h>
#include <utility>

using namespace std::string_view_literals;

namespace {

/// A visual with 8 bits a colour in 32-bit pixels, which is what frames are drawn in, and the
/// depth that goes with it. The root's own wherever it qualifies, as it nearly always does.
struct PictureVisual {
    xcb_visualid_t identifier = XCB_NONE;
    std::uint8_t depth = 0;
    xcb_colormap_t colormap = XCB_NONE; // one for all windows
};

PictureVisual findPictureVisual(X11Connection& x11)
{
    const auto& screen = x11.screen();
    PictureVisual found;
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0;
         xcb_depth_next(&depth)) {
        if (depth.data->depth != 24)
            continue;
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual)) {
            const auto& type = *visual.data;
            if (type._class != XCB_VISUAL_CLASS_TRUE_COLOR || type.red_mask != 0xff0000 ||
                type.green_mask != 0xff00 || type.blue_mask != 0xff)
                continue;
            if (found.identifier == XCB_NONE || type.visual_id == screen.root_visual)
                found = {type.visual_id, depth.data->depth, XCB_NONE};
        }
    }
    if (found.identifier == XCB_NONE)
        qFatal("The display has no 24-bit true-colour visual.");
    found.colormap = xcb_generate_id(x11.get());
    xcb_create_colormap(
        x11.get(), XCB_COLORMAP_ALLOC_NONE, found.colormap, screen.root, found.identifier);
    return found;
}

const PictureVisual& pictureVisual(X11Connection& x11)
{
    static const auto visual = findPictureVisual(x11);
    return visual;
}

/// The X Input extension, from 2.2 on, tells of touches.
void selectTouches(xcb_connection_t* connection, xcb_window_t window)
{
    if (!hasExtension(connection, xcb_input_id))
        return;
    const auto version = own(xcb_input_xi_query_version_reply(
        connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
    if (!version || version->major_version < 2 ||
        (version->major_version == 2 && version->minor_version < 2))
        return;
    struct {
        xcb_input_event_mask_t header{XCB_INPUT_DEVICE_ALL_MASTER, 1};
        std::uint32_t mask =
            XCB_INPUT_XI_EVENT_MASK_TOUCH_BEGIN | XCB_INPUT_XI_EVENT_MASK_TOUCH_UPDATE |
            XCB_INPUT_XI_EVENT_MASK_TOUCH_END; // the protocol wants all three or none
    } selection;
    xcb_input_xi_select_events(connection, window, 1, &selection.header);
}

constexpr std::uint8_t primaryButton = 1;
constexpr std::uint8_t middleButton = 2;
constexpr std::uint8_t secondaryButton = 3;

} // namespace

X11DesktopWindow::X11DesktopWindow(X11Connection& connection,
    X11WindowManager& windowManager,
    X11Occlusion& occlusion,
    const Screen& screen,
    const WindowState& wish)
    : NativeWindow(screen),
      m_connection(connection),
      m_windowManager(windowManager),
      m_occlusion(occlusion),
      m_committed{wish.frame, std::nullopt, {}}
{
    create();
    describe();
    describeFrame();
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
    const auto& visual = pictureVisual(m_connection);
    const auto& frame = m_committed.frame;
    m_window = xcb_generate_id(x11);
    m_surface = std::make_shared<X11Surface>(m_window);
    // No background: the server then leaves on the screen what was there until the first picture
    // comes, instead of flashing a colour.
    const std::array<std::uint32_t, 5> values{XCB_BACK_PIXMAP_NONE,
        0,                      // border pixel, because the depth may differ from the root's
        XCB_GRAVITY_NORTH_WEST, // what is shown stays when the size changes
        XCB_EVENT_MASK_EXPOSURE,
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

/// Everything that a window manager reads before it maps the window, and that never changes.
void X11DesktopWindow::describe()
{
    auto* const x11 = m_connection.get();
    auto& hints = m_connection.hints();
    const auto set = [&](xcb_atom_t name, xcb_atom_t type, std::string_view text) {
        xcb_change_property(x11,
            XCB_PROP_MODE_REPLACE,
            m_window,
            name,
            type,
            8,
            static_cast<std::uint32_t>(text.size()),
            text.data());
    };
    set(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, "tavelorhelper\0TavelorHelper\0"sv);
    set(XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, QSysInfo::machineHostName().toStdString());
    set(hints._NET_WM_NAME, hints.UTF8_STRING, "TavelorHelper"sv);
    xcb_ewmh_set_wm_pid(&hints, m_window, static_cast<std::uint32_t>(getpid()));
    xcb_ewmh_set_wm_window_type(&hints, m_window, 1, &hints._NET_WM_WINDOW_TYPE_DESKTOP);
    // Offered, so that a request to close the window is sent to us, who ignore it; a client that
    // does not offer it is killed instead.
    auto closing = m_connection.atom("WM_DELETE_WINDOW");
    xcb_icccm_set_wm_protocols(x11, m_window, hints.WM_PROTOCOLS, 1, &closing);
    // Motif's way of asking for no frame; some window managers put one around any type.
    constexpr std::uint32_t decorationsAreGiven = 2;
    const std::array<std::uint32_t, 5> noDecorations{decorationsAreGiven, 0, 0, 0, 0};
    const auto motifHints = m_connection.atom("_MOTIF_WM_HINTS");
    xcb_change_property(x11,
        XCB_PROP_MODE_REPLACE,
        m_window,
        motifHints,
        motifHints,
        32,
        noDecorations.size(),
        noDecorations.data());

    xcb_icccm_wm_hints_t manners{};
    xcb_icccm_wm_hints_set_input(&manners, 0);
    xcb_icccm_wm_hints_set_normal(&manners);
    xcb_icccm_set_wm_hints(x11, m_window, &manners);
}

/// Without them a window manager may place the window on another monitor.
void X11DesktopWindow::describeFrame()
{
    const auto& frame = m_committed.frame;
    xcb_size_hints_t size{};
    xcb_icccm_size_hints_set_position(&size, 1, frame.x(), frame.y());
    xcb_icccm_size_hints_set_size(&size, 1, frame.width(), frame.height());
    xcb_icccm_size_hints_set_win_gravity(&size, XCB_GRAVITY_STATIC);
    xcb_icccm_set_wm_normal_hints(m_connection.get(), m_window, &size);
}

void X11DesktopWindow::listen()
{
    m_events =
        m_connection.watch(m_window, [this](const xcb_generic_event_t& event) { handle(event); });
    // Grabs and not an event mask, because a window manager may have some of the buttons already:
    // then only those fail.
    for (const auto button : {primaryButton, middleButton, secondaryButton}) {
        xcb_grab_button(m_connection.get(),
            0,
            m_window,
            XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE,
            XCB_GRAB_MODE_ASYNC,
            XCB_GRAB_MODE_ASYNC,
            XCB_NONE,
            XCB_NONE,
            button,
            XCB_MOD_MASK_ANY);
    }
    selectTouches(m_connection.get(), m_window);
    m_managerChanges =
        observe(m_windowManager, &X11WindowManager::desktopWindowSupportChanged, [this] {
            if (m_isMapped)
                unmap();
            showOrHide(true);
            xcb_flush(m_connection.get());
        });
}

void X11DesktopWindow::handle(const xcb_generic_event_t& event)
{
    if (!views())
        return;
    switch (event.response_type & 0x7f) {
    case XCB_EXPOSE: {
        const auto& area = reinterpret_cast<const xcb_expose_event_t&>(event);
        m_occlusion.noteExposed(m_window);
        views()->expose({area.x, area.y, area.width, area.height});
        break;
    }
    case XCB_BUTTON_PRESS: {
        const auto& button = reinterpret_cast<const xcb_button_press_event_t&>(event);
        if (button.detail == primaryButton)
            views()->press({button.event_x, button.event_y});
        else
            passToRoot(button);
        break;
    }
    case XCB_BUTTON_RELEASE: {
        const auto& button = reinterpret_cast<const xcb_button_release_event_t&>(event);
        if (button.detail == primaryButton)
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

/// The root window's menus, which many window managers have, shall open on the wallpaper as they do
/// on a bare desktop.
void X11DesktopWindow::passToRoot(const xcb_button_press_event_t& button)
{
    auto* const x11 = m_connection.get();
    xcb_ungrab_pointer(x11, button.time); // or the menu could not take it
    auto passed = button;
    passed.event = m_connection.root();
    passed.child = XCB_NONE;
    passed.event_x = button.root_x;
    passed.event_y = button.root_y;
    xcb_send_event(x11,
        0,
        m_connection.root(),
        XCB_EVENT_MASK_BUTTON_PRESS,
        reinterpret_cast<const char*>(&passed));
    xcb_flush(x11);
}

void X11DesktopWindow::commit(const WindowState& wish, bool isOrderedAnew)
{
    const auto former = std::exchange(m_committed, wish);
    if (former.frame != wish.frame)
        moveTo(wish.frame);
    if (former.behavior != wish.behavior && m_isMapped)
        describeBehavior();
    showOrHide(isOrderedAnew);
}

void X11DesktopWindow::moveTo(const QRect& frame)
{
    describeFrame();
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
    if (!m_isMapped || m_isCovered)
        return {}; // nobody would see it
    return {m_surface, m_committed.frame.size(), viewFrame, 1};
}

void X11DesktopWindow::showOrHide(bool isOrderedAnew)
{
    const auto& order = m_committed.order;
    const bool wasMapped = m_isMapped;
    if (order && !m_isMapped)
        map();
    if (order && m_isMapped && (isOrderedAnew || !wasMapped))
        restack(*order);
    else if (!order && m_isMapped)
        unmap();
}

void X11DesktopWindow::map()
{
    using DesktopWindowSupport = X11WindowManager::DesktopWindowSupport;
    if (m_windowManager.desktopWindowSupport() == DesktopWindowSupport::Impossible)
        return;
    m_isMapped = true;
    m_isManaged = m_windowManager.desktopWindowSupport() == DesktopWindowSupport::Managed;
    const std::uint32_t bypasses = m_isManaged ? 0 : 1;
    xcb_change_window_attributes(m_connection.get(), m_window, XCB_CW_OVERRIDE_REDIRECT, &bypasses);
    describeBehavior();
    // Below everything from the first moment; who maps in front is raised afterwards.
    restack(StackingOrder::Back);
    xcb_map_window(m_connection.get(), m_window);
    m_isCovered = false;
    m_shown = m_occlusion.add(m_window, [this](bool isCovered) {
        m_isCovered = isCovered;
        tellTargetChange();
    });
    tellTargetChange();
}

/// Each time anew: window managers remove these properties when a window is withdrawn.
void X11DesktopWindow::describeBehavior()
{
    auto& hints = m_connection.hints();
    if (contains(m_committed.behavior, WindowCollectionBehavior::CanJoinAllSpaces)) {
        constexpr std::uint32_t allDesktops = 0xffffffff;
        xcb_ewmh_set_wm_desktop(&hints, m_window, allDesktops);
    }
    if (contains(m_committed.behavior, WindowCollectionBehavior::Transient)) {
        // The state "below" is left alone on purpose: mutter tests it before the type and would
        // lift the window above the desktop's icons.
        std::array states{hints._NET_WM_STATE_SKIP_TASKBAR, hints._NET_WM_STATE_SKIP_PAGER};
        xcb_ewmh_set_wm_state(&hints, m_window, states.size(), states.data());
    }
}

void X11DesktopWindow::restack(StackingOrder order)
{
    if (!m_isManaged && order == StackingOrder::Front) {
        // Nobody keeps such a window within a layer, and the top of the stack would cover
        // people's windows. Where no desktop type is known, nothing draws icons either.
        order = StackingOrder::Back;
    }
    const std::uint32_t mode =
        order == StackingOrder::Back ? XCB_STACK_MODE_BELOW : XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection.get(), m_window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
}

void X11DesktopWindow::unmap()
{
    m_isMapped = false;
    m_shown.reset();
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
}
