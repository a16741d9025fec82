#include "desktop/X11Desktop.h"

#include "support/ChildProcess.h"

#include <QTest>

#include <xcb/shape.h>
#include <xcb/xtest.h>

#include <array>

using namespace Qt::StringLiterals;

namespace {

/// Unlike a window's black.
constexpr std::uint32_t bare = 0x3f3f3f;

/// As the protocol counts pixels.
std::uint16_t word(int number)
{
    return static_cast<std::uint16_t>(number);
}

} // namespace

X11Desktop::X11Desktop(const QSize& size, const QStringList& serverArguments) : VirtualDesktop(size)
{
    // The server takes a free display by itself and writes its number to its standard output.
    const auto arguments = u"-displayfd 1 -nolisten tcp -noreset -screen 0 %1x%2x24"_s;
    m_display =
        u':' + start(m_server,
                   u"Xvfb"_s,
                   arguments.arg(size.width()).arg(size.height()).split(u' ') + serverArguments);
    m_connection.reset(xcb_connect(m_display.toLatin1().constData(), nullptr));
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(connection())).data;
    xcb_change_window_attributes(connection(), root(), XCB_CW_BACK_PIXEL, &bare);
    xcb_clear_area(connection(), 0, root(), 0, 0, 0, 0);
    xcb_flush(connection());
}

X11Desktop::~X11Desktop()
{
    m_connection.reset();
    for (auto* process : {&m_windowManager, &m_server})
        stop(*process);
}

void X11Desktop::nameDisplay(QProcessEnvironment& environment) const
{
    environment.insert(u"DISPLAY"_s, m_display);
}

void X11Desktop::startWindowManager(const QString& command, const QProcessEnvironment& additions)
{
    // The last thing that openbox publishes when it starts.
    constexpr auto last = "_NET_SUPPORTED";
    xcb_delete_property(connection(), root(), atom(last));
    auto variables = environment();
    variables.insert(additions);
    m_windowManager.setProcessEnvironment(variables);
    ChildProcess::endWithThisProcess(m_windowManager);
    m_windowManager.startCommand(command);
    if (!QTest::qWaitFor([this] { return !property(root(), last).isEmpty(); }, 20'000))
        qFatal("%s does not start.", qUtf8Printable(command));
}

void X11Desktop::killWindowManager()
{
    m_windowManager.kill();
    m_windowManager.waitForFinished();
}

void X11Desktop::setMonitors(Monitors monitors)
{
    const auto xrandr = [this](const QString& command) {
        QProcess process;
        process.startCommand(u"xrandr -d %1 "_s.arg(m_display) + command);
        process.waitForFinished();
    };
    const auto half = u" %1/250x%2/280+"_s.arg(size().width() / 2).arg(size().height());
    if (monitors != Monitors::TwoHalves)
        xrandr(u"--delmonitor RIGHT"_s);
    // The first monitor owns the server's one output; the other has none.
    if (monitors == Monitors::One)
        xrandr(u"--delmonitor LEFT"_s);
    else
        xrandr(u"--setmonitor LEFT"_s + half + u"0+0 screen"_s);
    if (monitors == Monitors::TwoHalves)
        xrandr(u"--setmonitor RIGHT"_s + half + u"%1+0 none"_s.arg(size().width() / 2));
}

std::optional<QColor> X11Desktop::pixel(const QPoint& point) const
{
    const auto image = picture({point, QSize(1, 1)});
    return image.isNull() ? std::nullopt : std::optional(image.pixelColor(0, 0));
}

QImage X11Desktop::picture(const QRect& area) const
{
    const auto taken = area.isNull() ? QRect({0, 0}, size()) : area;
    const auto cookie = xcb_get_image(connection(),
        XCB_IMAGE_FORMAT_Z_PIXMAP,
        root(),
        static_cast<std::int16_t>(taken.x()),
        static_cast<std::int16_t>(taken.y()),
        word(taken.width()),
        word(taken.height()),
        ~0U);
    const auto reply = own(xcb_get_image_reply(connection(), cookie, nullptr));
    if (!reply)
        return {};
    const auto* const data = xcb_get_image_data(reply.get());
    // A copy, because the image does not own the reply.
    return QImage(data, taken.width(), taken.height(), QImage::Format_RGB32).copy();
}

QColor X11Desktop::bareColour() const
{
    return QColor::fromRgb(bare);
}

void X11Desktop::click(const QPoint& point, std::uint8_t button) const
{
    const auto fake = [&](std::uint8_t type, std::uint8_t detail) {
        xcb_test_fake_input(
            connection(), type, detail, 0, root(), word(point.x()), word(point.y()), 0);
    };
    fake(XCB_MOTION_NOTIFY, 0);
    fake(XCB_BUTTON_PRESS, button);
    fake(XCB_BUTTON_RELEASE, button);
    xcb_flush(connection());
}

void X11Desktop::paint(const QRect& area, const QColor& colour) const
{
    const auto context = xcb_generate_id(connection());
    const std::array<std::uint32_t, 2> values{
        colour.rgb() & 0xffffff, XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS};
    xcb_create_gc(
        connection(), context, root(), XCB_GC_FOREGROUND | XCB_GC_SUBWINDOW_MODE, values.data());
    const xcb_rectangle_t rectangle{static_cast<std::int16_t>(area.x()),
        static_cast<std::int16_t>(area.y()),
        word(area.width()),
        word(area.height())};
    xcb_poly_fill_rectangle(connection(), root(), context, 1, &rectangle);
    xcb_free_gc(connection(), context);
    xcb_flush(connection());
}

void X11Desktop::pressKey(std::uint8_t keyCode) const
{
    for (const auto type : {XCB_KEY_PRESS, XCB_KEY_RELEASE}) {
        xcb_test_fake_input(
            connection(), static_cast<std::uint8_t>(type), keyCode, 0, XCB_NONE, 0, 0, 0);
    }
    xcb_flush(connection());
}

void X11Desktop::cover(const QColor& colour, Extent extent)
{
    if (extent == Extent::Left) {
        m_covers = {openWindow(WindowKind::Ordinary, colour)};
        return;
    }
    const QSize half(size().width() / 2 + 50, size().height() + 50); // they overlap
    m_covers = {openWindow(WindowKind::Ordinary, colour, {{0, 0}, half}),
        openWindow(WindowKind::Ordinary, colour, {{size().width() / 2 - 50, 0}, half})};
}

void X11Desktop::uncover()
{
    for (const auto window : std::exchange(m_covers, {}))
        closeWindow(window);
}

xcb_window_t X11Desktop::openWindow(WindowKind kind, const QColor& colour, const QRect& frame) const
{
    auto* const x11 = connection();
    const bool hasAlpha = kind == WindowKind::WithAlpha || kind == WindowKind::WithOpaqueRegion;
    const auto [depth, visual] = this->visual(hasAlpha);
    const auto colormap = xcb_generate_id(x11);
    xcb_create_colormap(x11, XCB_COLORMAP_ALLOC_NONE, colormap, root(), visual);

    const auto window = xcb_generate_id(x11);
    const auto width = word(frame.width());
    const auto height = word(frame.height());
    constexpr auto given = XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_COLORMAP;
    const std::array<std::uint32_t, 3> values{colour.rgb() & 0xffffff, 0, colormap};
    xcb_create_window(
        x11, depth, window, root(), 0, 0, width, height, 0, 0, visual, given, values.data());
    moveWindow(window, frame.topLeft());

    const auto set = [&](const char* name, xcb_atom_t type, std::vector<std::uint32_t> contents) {
        const auto count = static_cast<std::uint32_t>(contents.size());
        xcb_change_property(
            x11, XCB_PROP_MODE_REPLACE, window, atom(name), type, 32, count, contents.data());
    };
    set("_NET_WM_WINDOW_TYPE",
        XCB_ATOM_ATOM,
        {atom(kind == WindowKind::Desktop ? "_NET_WM_WINDOW_TYPE_DESKTOP"
                                          : "_NET_WM_WINDOW_TYPE_NORMAL")});
    if (kind == WindowKind::WithOpaqueRegion)
        set("_NET_WM_OPAQUE_REGION", XCB_ATOM_CARDINAL, {0, 0, width, height});
    if (kind == WindowKind::Faded)
        set("_NET_WM_WINDOW_OPACITY", XCB_ATOM_CARDINAL, {0x80000000});
    if (kind == WindowKind::Shaped) {
        const xcb_rectangle_t upperHalf{0, 0, width, word(height / 2)};
        xcb_shape_rectangles(
            x11, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, 0, window, 0, 0, 1, &upperHalf);
    }
    // "The user wants it here": window managers place the others as they like.
    std::vector<std::uint32_t> hints(18);
    hints.front() = 1;
    set("WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS, hints);
    xcb_map_window(x11, window);
    xcb_flush(x11);
    return window;
}

void X11Desktop::swapButtons() const
{
    const auto old = own(xcb_get_pointer_mapping_reply(
        connection(), xcb_get_pointer_mapping(connection()), nullptr));
    auto* const map = xcb_get_pointer_mapping_map(old.get());
    std::swap(map[0], map[2]);
    own(xcb_set_pointer_mapping_reply(
        connection(), xcb_set_pointer_mapping(connection(), old->map_len, map), nullptr));
}

std::pair<std::uint8_t, xcb_visualid_t> X11Desktop::visual(bool hasAlpha) const
{
    if (!hasAlpha)
        return {m_screen->root_depth, m_screen->root_visual};
    auto depth = xcb_screen_allowed_depths_iterator(m_screen);
    while (depth.rem > 1 && depth.data->depth != 32)
        xcb_depth_next(&depth);
    return {depth.data->depth, xcb_depth_visuals(depth.data)->visual_id};
}

void X11Desktop::renameWindowManager(const QByteArray& name) const
{
    const auto check = property(root(), "_NET_SUPPORTING_WM_CHECK");
    xcb_change_property(connection(),
        XCB_PROP_MODE_REPLACE,
        *reinterpret_cast<const xcb_window_t*>(check.constData()),
        atom("_NET_WM_NAME"),
        atom("UTF8_STRING"),
        8,
        static_cast<std::uint32_t>(name.size()),
        name.constData());
    xcb_flush(connection());
}

void X11Desktop::pretendCompositing() const
{
    const auto owner = xcb_generate_id(connection());
    xcb_create_window(connection(), 0, owner, root(), -1, -1, 1, 1, 0, 0, 0, 0, nullptr);
    xcb_set_selection_owner(connection(), owner, atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
    xcb_flush(connection());
}

void X11Desktop::moveWindow(xcb_window_t window, const QPoint& position) const
{
    const std::array values{position.x(), position.y()};
    xcb_configure_window(
        connection(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values.data());
    xcb_flush(connection());
}

void X11Desktop::closeWindow(xcb_window_t window) const
{
    xcb_destroy_window(connection(), window);
    xcb_flush(connection());
}

void X11Desktop::requestClose() const
{
    for (const auto window : managedWindows())
        ask(window, "_NET_CLOSE_WINDOW", XCB_CURRENT_TIME);
}

void X11Desktop::requestToCloseTopmost() const
{
    const auto window = topWindows().back();
    send(window, XCB_EVENT_MASK_NO_EVENT, window, "WM_PROTOCOLS", atom("WM_DELETE_WINDOW"));
}

std::vector<xcb_window_t> X11Desktop::topWindows() const
{
    const auto tree =
        own(xcb_query_tree_reply(connection(), xcb_query_tree(connection(), root()), nullptr));
    const auto* const windows = xcb_query_tree_children(tree.get());
    return {windows, windows + tree->children_len};
}

QStringList X11Desktop::windowTitles() const
{
    QStringList titles;
    for (const auto window : managedWindows())
        titles << QString::fromUtf8(property(window, "_NET_WM_NAME"));
    return titles;
}

QStringList X11Desktop::desktopPrograms() const
{
    QStringList programs;
    const auto desktop = atom("_NET_WM_WINDOW_TYPE_DESKTOP");
    for (const auto window : managedWindows()) {
        const auto types = property(window, "_NET_WM_WINDOW_TYPE");
        if (types.contains(QByteArray(reinterpret_cast<const char*>(&desktop), sizeof desktop)))
            programs << QString::fromUtf8(property(window, "WM_CLASS").constData());
    }
    return programs;
}

xcb_window_t X11Desktop::windowNamed(const QString& title) const
{
    for (const auto window : managedWindows()) {
        if (QString::fromUtf8(property(window, "_NET_WM_NAME")) == title)
            return window;
    }
    return XCB_WINDOW_NONE;
}

std::vector<xcb_window_t> X11Desktop::managedWindows() const
{
    const auto list = property(root(), "_NET_CLIENT_LIST");
    const auto* windows = reinterpret_cast<const xcb_window_t*>(list.constData());
    return {windows, windows + list.size() / 4};
}

QByteArray X11Desktop::property(xcb_window_t window, const char* name) const
{
    const auto cookie =
        xcb_get_property(connection(), 0, window, atom(name), XCB_ATOM_ANY, 0, 1000);
    const auto reply = own(xcb_get_property_reply(connection(), cookie, nullptr));
    if (!reply)
        return {};
    return {static_cast<char*>(xcb_get_property_value(reply.get())),
        xcb_get_property_value_length(reply.get())};
}

xcb_atom_t X11Desktop::atom(const char* name) const
{
    const auto cookie =
        xcb_intern_atom(connection(), 0, word(static_cast<int>(qstrlen(name))), name);
    return own(xcb_intern_atom_reply(connection(), cookie, nullptr))->atom;
}

void X11Desktop::ask(xcb_window_t window, const char* what, std::uint32_t value) const
{
    constexpr auto mask = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    send(root(), mask, window, what, value);
}

void X11Desktop::send(xcb_window_t receiver,
    std::uint32_t mask,
    xcb_window_t window,
    const char* what,
    std::uint32_t value) const
{
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(what);
    message.data.data32[0] = value;
    xcb_send_event(connection(), 0, receiver, mask, reinterpret_cast<const char*>(&message));
    xcb_flush(connection());
}
