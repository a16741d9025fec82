#include "platform/linux/x11/X11DesktopWindow.h"

#include "base/Observe.h"

#include <QString>
#include <QSysInfo>

#include <xcb/xcb_icccm.h>
#include <xcb/xinput.h>

#include <array>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace {

X11Connection& connection()
{
    auto* const shared = X11Connection::shared();
    if (!shared)
        qFatal("A desktop window needs an X11 display.");
    return *shared;
}

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

/// Once is enough, however many windows there are.
void reportImpossible()
{
    static bool hasReported = false;
    if (!std::exchange(hasReported, true))
        std::fputs("This Wayland compositor would show the wallpaper above all windows, "
                   "so it stays hidden.\n",
            stderr);
}

constexpr std::uint8_t primaryButton = 1;
constexpr std::uint8_t middleButton = 2;
constexpr std::uint8_t secondaryButton = 3;

} // namespace

X11DesktopWindow::X11DesktopWindow(const QRect& frame)
    : Body(frame.size()),
      m_connection(connection()),
      m_windowManager(X11WindowManager::shared(m_connection)),
      m_occlusion(X11Occlusion::shared(m_connection))
{
    create(frame);
    describe(frame);
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

void X11DesktopWindow::create(const QRect& frame)
{
    auto* const x11 = m_connection.get();
    const auto& visual = pictureVisual(m_connection);
    m_window = xcb_generate_id(x11);
    // No background: the server then leaves on the screen what was there until the first picture
    // comes, instead of flashing a colour.
    const std::array<std::uint32_t, 4> values{XCB_BACK_PIXMAP_NONE,
        0, // border pixel, because the depth may differ from the root's
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
        XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
        values.data());
}

/// Everything that a window manager reads before it maps the window.
void X11DesktopWindow::describe(const QRect& frame)
{
    using namespace std::string_literals;
    setProperty("WM_CLASS", XCB_ATOM_STRING, "tavelorhelper\0TavelorHelper\0"s);
    setProperty("_NET_WM_NAME", m_connection.atom("UTF8_STRING"), "TavelorHelper"s);
    setProperty("WM_CLIENT_MACHINE", XCB_ATOM_STRING, QSysInfo::machineHostName().toStdString());
    setProperty("_NET_WM_PID",
        XCB_ATOM_CARDINAL,
        std::vector<std::uint32_t>{static_cast<std::uint32_t>(getpid())});
    setProperty("_NET_WM_WINDOW_TYPE",
        XCB_ATOM_ATOM,
        std::vector{m_connection.atom("_NET_WM_WINDOW_TYPE_DESKTOP")});
    // Offered, so that a request to close the window is sent to us, who ignore it; a client that
    // does not offer it is killed instead.
    setProperty("WM_PROTOCOLS", XCB_ATOM_ATOM, std::vector{m_connection.atom("WM_DELETE_WINDOW")});
    // Motif's way of asking for no frame; some window managers put one around any type.
    constexpr std::uint32_t decorationsAreGiven = 2;
    setProperty("_MOTIF_WM_HINTS",
        m_connection.atom("_MOTIF_WM_HINTS"),
        std::vector<std::uint32_t>{decorationsAreGiven, 0, 0, 0, 0});

    xcb_icccm_wm_hints_t hints{};
    xcb_icccm_wm_hints_set_input(&hints, 0);
    xcb_icccm_wm_hints_set_normal(&hints);
    xcb_icccm_set_wm_hints(m_connection.get(), m_window, &hints);

    // Without them a window manager may place the window on another monitor.
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
    m_managerChanges = observe(m_windowManager, &X11WindowManager::desktopWindowsChanged, [this] {
        if (m_isMapped)
            unmap();
        applyChange();
    });
    m_change.setSingleShot(true);
    m_change.callOnTimeout([this] { applyChange(); });
}

void X11DesktopWindow::handle(const xcb_generic_event_t& event)
{
    switch (event.response_type & 0x7f) {
    case XCB_EXPOSE: {
        const auto& area = reinterpret_cast<const xcb_expose_event_t&>(event);
        expose({area.x, area.y, area.width, area.height});
        break;
    }
    case XCB_BUTTON_PRESS: {
        const auto& button = reinterpret_cast<const xcb_button_press_event_t&>(event);
        if (button.detail == primaryButton)
            press({button.event_x, button.event_y});
        else
            passToRoot(button);
        break;
    }
    case XCB_BUTTON_RELEASE: {
        const auto& button = reinterpret_cast<const xcb_button_release_event_t&>(event);
        if (button.detail == primaryButton)
            release({button.event_x, button.event_y});
        break;
    }
    case XCB_GE_GENERIC: {
        const auto& touched = reinterpret_cast<const xcb_input_touch_begin_event_t&>(event);
        constexpr int fraction = 65536; // FP1616
        if (touched.event_type == XCB_INPUT_TOUCH_BEGIN)
            touch({touched.event_x / fraction, touched.event_y / fraction});
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

void X11DesktopWindow::setCollectionBehavior(WindowCollectionBehavior behavior)
{
    m_behavior = behavior;
}

void X11DesktopWindow::setLevel(WindowLevel level)
{
    // The window's type is its level. The state "below" is left alone on purpose: mutter tests it
    // before the type and would lift the window above the desktop's icons.
    Q_UNUSED(level)
}

void X11DesktopWindow::show(Order order)
{
    m_wantedOrder = order;
    m_change.start();
}

void X11DesktopWindow::hide()
{
    m_wantedOrder.reset();
    m_change.start();
}

/// At the end of the turn, so that a window that is shown and hidden in one does not flash, and
/// one that is put in its place several times is moved once.
void X11DesktopWindow::applyChange()
{
    if (m_wantedOrder && !m_isMapped)
        map();
    if (m_wantedOrder && m_isMapped)
        restack(*m_wantedOrder);
    else if (m_isMapped)
        unmap();
    xcb_flush(m_connection.get());
}

void X11DesktopWindow::map()
{
    using DesktopWindows = X11WindowManager::DesktopWindows;
    if (m_windowManager.desktopWindows() == DesktopWindows::Impossible) {
        reportImpossible();
        return;
    }
    m_isMapped = true;
    m_isManaged = m_windowManager.desktopWindows() == DesktopWindows::Managed;
    const std::uint32_t bypasses = m_isManaged ? 0 : 1;
    xcb_change_window_attributes(m_connection.get(), m_window, XCB_CW_OVERRIDE_REDIRECT, &bypasses);
    describeBehavior();
    // Below everything from the first moment; who maps in front is raised afterwards.
    restack(Order::Back);
    xcb_map_window(m_connection.get(), m_window);
    m_shown = m_occlusion.add(m_window);
}

/// Each time anew: window managers remove these properties when a window is withdrawn.
void X11DesktopWindow::describeBehavior()
{
    if (contains(m_behavior, WindowCollectionBehavior::CanJoinAllSpaces)) {
        constexpr std::uint32_t allDesktops = 0xffffffff;
        setProperty("_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, std::vector{allDesktops});
    }
    if (contains(m_behavior, WindowCollectionBehavior::Transient)) {
        setProperty("_NET_WM_STATE",
            XCB_ATOM_ATOM,
            std::vector{m_connection.atom("_NET_WM_STATE_SKIP_TASKBAR"),
                m_connection.atom("_NET_WM_STATE_SKIP_PAGER")});
    }
}

void X11DesktopWindow::restack(Order order)
{
    if (!m_isManaged && order == Order::Front) {
        // Nobody keeps such a window within a layer, and the top of the stack would cover
        // people's windows. Where no desktop type is known, nothing draws icons either.
        order = Order::Back;
    }
    const std::uint32_t mode = order == Order::Back ? XCB_STACK_MODE_BELOW : XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection.get(), m_window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
}

void X11DesktopWindow::unmap()
{
    m_isMapped = false;
    m_shown.reset();
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

template <typename Value>
void X11DesktopWindow::setProperty(
    const std::string& name, xcb_atom_t type, const std::vector<Value>& values)
{
    static_assert(sizeof(Value) == 4);
    xcb_change_property(m_connection.get(),
        XCB_PROP_MODE_REPLACE,
        m_window,
        m_connection.atom(name),
        type,
        32,
        static_cast<std::uint32_t>(values.size()),
        values.data());
}

void X11DesktopWindow::setProperty(
    const std::string& name, xcb_atom_t type, const std::string& text)
{
    xcb_change_property(m_connection.get(),
        XCB_PROP_MODE_REPLACE,
        m_window,
        m_connection.atom(name),
        type,
        8,
        static_cast<std::uint32_t>(text.size()),
        text.data());
}
