#include "desktop/VirtualDesktop.h"

#include "support/ChildProcess.h"

#include <QColor>
#include <QTest>

#include <xcb/shape.h>
#include <xcb/xtest.h>

#include <array>
#include <cstdlib>

namespace {

/// What xcb allocates with malloc.
struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply>
std::unique_ptr<Reply, Free> own(Reply* reply)
{
    return std::unique_ptr<Reply, Free>(reply);
}

void stop(QProcess& process)
{
    process.terminate();
    if (!process.waitForFinished(5000)) {
        process.kill();
        process.waitForFinished();
    }
}

QByteArray firstLine(QProcess& process, const char* what)
{
    QByteArray line;
    while (!line.endsWith('\n')) {
        if (!process.waitForReadyRead(20'000))
            qFatal("%s does not start: %s", what, process.readAllStandardError().constData());
        line += process.readLine();
    }
    return line.trimmed();
}

xcb_visualid_t visualWithAlpha(const xcb_screen_t& screen)
{
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0;
         xcb_depth_next(&depth)) {
        if (depth.data->depth == 32 && depth.data->visuals_len > 0)
            return xcb_depth_visuals(depth.data)->visual_id;
    }
    qFatal("The server has no visual with opacity.");
}

} // namespace

VirtualDesktop::VirtualDesktop(const QSize& size, const QStringList& serverArguments) : m_size(size)
{
    // The server takes a free display by itself and writes its number to its standard output.
    const QStringList arguments{
        QStringLiteral("-displayfd"),
        QStringLiteral("1"),
        QStringLiteral("-screen"),
        QStringLiteral("0"),
        QStringLiteral("%1x%2x24").arg(size.width()).arg(size.height()),
        QStringLiteral("-nolisten"),
        QStringLiteral("tcp"),
        QStringLiteral("-noreset"),
    };
    ChildProcess::endWithThisProcess(m_server, SIGTERM); // it tidies up then
    m_server.start(QStringLiteral("Xvfb"), arguments + serverArguments);
    m_display = u':' + QString::fromLatin1(firstLine(m_server, "Xvfb"));
    m_connection.reset(xcb_connect(m_display.toLatin1().constData(), nullptr));

    ChildProcess::endWithThisProcess(m_bus);
    m_bus.start(QStringLiteral("dbus-daemon"),
        {QStringLiteral("--session"),
            QStringLiteral("--nofork"),
            QStringLiteral("--print-address=1")});
    m_busAddress = QString::fromLatin1(firstLine(m_bus, "dbus-daemon"));
}

VirtualDesktop::~VirtualDesktop()
{
    m_connection.reset();
    if (m_windowManager.state() != QProcess::NotRunning)
        stop(m_windowManager);
    stop(m_server);
    if (m_bus.state() != QProcess::NotRunning)
        stop(m_bus);
}

QProcessEnvironment VirtualDesktop::environment() const
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.insert(QStringLiteral("DISPLAY"), m_display);
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_busAddress);
    return environment;
}

xcb_window_t VirtualDesktop::root() const
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection())).data->root;
}

xcb_atom_t VirtualDesktop::atom(const char* name) const
{
    const auto cookie =
        xcb_intern_atom(connection(), 0, static_cast<std::uint16_t>(qstrlen(name)), name);
    return own(xcb_intern_atom_reply(connection(), cookie, nullptr))->atom;
}

bool VirtualDesktop::hasWindowManager() const
{
    // The last thing that openbox publishes when it starts.
    const auto cookie =
        xcb_get_property(connection(), 0, root(), atom("_NET_SUPPORTED"), XCB_ATOM_ATOM, 0, 1);
    return own(xcb_get_property_reply(connection(), cookie, nullptr))->value_len > 0;
}

void VirtualDesktop::startWindowManager()
{
    xcb_delete_property(connection(), root(), atom("_NET_SUPPORTED"));
    m_windowManager.setProcessEnvironment(environment());
    ChildProcess::endWithThisProcess(m_windowManager);
    m_windowManager.start(QStringLiteral("openbox"), {});
    if (!QTest::qWaitFor([this] { return hasWindowManager(); }, 20'000))
        qFatal("openbox does not start.");
}

void VirtualDesktop::killWindowManager()
{
    m_windowManager.kill();
    m_windowManager.waitForFinished();
}

void VirtualDesktop::stopBus()
{
    stop(m_bus);
}

void VirtualDesktop::setMonitors(Monitors monitors)
{
    const auto run = [this](const QString& command) {
        QProcess xrandr;
        xrandr.setProcessEnvironment(environment());
        xrandr.setStandardOutputFile(QProcess::nullDevice());
        xrandr.startCommand(QStringLiteral("xrandr ") + command);
        xrandr.waitForFinished();
    };
    // The first monitor owns the server's one output; the others have none.
    const auto half = QStringLiteral("%1/250x%2/280+").arg(m_size.width() / 2).arg(m_size.height());
    if (monitors == Monitors::One) {
        run(QStringLiteral("--delmonitor RIGHT"));
        run(QStringLiteral("--delmonitor LEFT"));
        return;
    }
    if (monitors == Monitors::LeftHalf)
        run(QStringLiteral("--delmonitor RIGHT"));
    run(QStringLiteral("--setmonitor LEFT ") + half + QStringLiteral("0+0 screen"));
    if (monitors == Monitors::TwoHalves)
        run(QStringLiteral("--setmonitor RIGHT ") + half +
            QStringLiteral("%1+0 none").arg(m_size.width() / 2));
}

QString VirtualDesktop::colour(const QPoint& point) const
{
    const auto cookie = xcb_get_image(connection(),
        XCB_IMAGE_FORMAT_Z_PIXMAP,
        root(),
        static_cast<std::int16_t>(point.x()),
        static_cast<std::int16_t>(point.y()),
        1,
        1,
        ~0U);
    const auto image = own(xcb_get_image_reply(connection(), cookie, nullptr));
    if (!image)
        return {};
    const auto* bytes = xcb_get_image_data(image.get());
    const QColor seen{bytes[2], bytes[1], bytes[0]};
    for (const auto* name :
        {"red", "lime", "blue", "yellow", "magenta", "cyan", "white", "black"}) {
        const QColor pure{QLatin1String(name)};
        constexpr int tolerance = 40; // what YUV and its standards make of a pure colour
        if (std::abs(seen.red() - pure.red()) <= tolerance &&
            std::abs(seen.green() - pure.green()) <= tolerance &&
            std::abs(seen.blue() - pure.blue()) <= tolerance)
            return QLatin1String(name);
    }
    return seen.name();
}

void VirtualDesktop::moveAndClick(const QPoint& point, std::uint8_t button) const
{
    const auto fake = [this](std::uint8_t type, std::uint8_t detail, const QPoint& at) {
        xcb_test_fake_input(connection(),
            type,
            detail,
            XCB_CURRENT_TIME,
            root(),
            static_cast<std::int16_t>(at.x()),
            static_cast<std::int16_t>(at.y()),
            0);
    };
    fake(XCB_MOTION_NOTIFY, 0, point);
    fake(XCB_BUTTON_PRESS, button, {});
    fake(XCB_BUTTON_RELEASE, button, {});
    xcb_flush(connection());
}

xcb_window_t VirtualDesktop::openWindow(
    WindowKind kind, const QColor& colour, const QRect& frame) const
{
    const auto& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection())).data;
    const bool hasAlpha = kind == WindowKind::WithAlpha || kind == WindowKind::WithOpaqueRegion;
    const auto visual = hasAlpha ? visualWithAlpha(screen) : screen.root_visual;
    const auto colormap = xcb_generate_id(connection());
    xcb_create_colormap(connection(), XCB_COLORMAP_ALLOC_NONE, colormap, root(), visual);
    const std::uint8_t depth = hasAlpha ? 32 : screen.root_depth;

    const auto window = xcb_generate_id(connection());
    const auto width = static_cast<std::uint16_t>(frame.width());
    const auto height = static_cast<std::uint16_t>(frame.height());
    const std::array<std::uint32_t, 3> values{colour.rgb() & 0xffffff, 0, colormap};
    xcb_create_window(connection(),
        depth,
        window,
        root(),
        static_cast<std::int16_t>(frame.x()),
        static_cast<std::int16_t>(frame.y()),
        width,
        height,
        0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT,
        visual,
        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_COLORMAP,
        values.data());
    setProperty(window,
        "_NET_WM_WINDOW_TYPE",
        XCB_ATOM_ATOM,
        {atom(kind == WindowKind::Desktop ? "_NET_WM_WINDOW_TYPE_DESKTOP"
                                          : "_NET_WM_WINDOW_TYPE_NORMAL")});
    if (kind == WindowKind::WithOpaqueRegion)
        setProperty(window, "_NET_WM_OPAQUE_REGION", XCB_ATOM_CARDINAL, {0, 0, width, height});
    if (kind == WindowKind::Faded)
        setProperty(window, "_NET_WM_WINDOW_OPACITY", XCB_ATOM_CARDINAL, {0x80000000});
    if (kind == WindowKind::Shaped) {
        const xcb_rectangle_t upperHalf{0, 0, width, static_cast<std::uint16_t>(height / 2)};
        xcb_shape_rectangles(connection(),
            XCB_SHAPE_SO_SET,
            XCB_SHAPE_SK_BOUNDING,
            XCB_CLIP_ORDERING_UNSORTED,
            window,
            0,
            0,
            1,
            &upperHalf);
    }
    // "The user wants it here": window managers place the others as they like.
    std::vector<std::uint32_t> hints(18);
    hints.front() = 1;
    setProperty(window, "WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS, hints);
    xcb_map_window(connection(), window);
    xcb_flush(connection());
    return window;
}

void VirtualDesktop::setProperty(xcb_window_t window,
    const char* name,
    xcb_atom_t type,
    const std::vector<std::uint32_t>& values) const
{
    xcb_change_property(connection(),
        XCB_PROP_MODE_REPLACE,
        window,
        atom(name),
        type,
        32,
        static_cast<std::uint32_t>(values.size()),
        values.data());
}

void VirtualDesktop::moveWindow(xcb_window_t window, const QPoint& position) const
{
    const std::array<std::int32_t, 2> values{position.x(), position.y()};
    xcb_configure_window(
        connection(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values.data());
    xcb_flush(connection());
}

void VirtualDesktop::iconify(xcb_window_t window) const
{
    constexpr std::uint32_t iconicState = 3;
    sendToRoot(window, "WM_CHANGE_STATE", iconicState);
}

void VirtualDesktop::sendToDesktop(xcb_window_t window, std::uint32_t number) const
{
    sendToRoot(window, "_NET_WM_DESKTOP", number);
}

void VirtualDesktop::closeWindow(xcb_window_t window) const
{
    xcb_destroy_window(connection(), window);
    xcb_flush(connection());
}

void VirtualDesktop::requestDesktop(std::uint32_t number) const
{
    sendToRoot(root(), "_NET_CURRENT_DESKTOP", number);
}

void VirtualDesktop::requestClose() const
{
    for (const auto window : managedWindows())
        sendToRoot(window, "_NET_CLOSE_WINDOW", XCB_CURRENT_TIME);
}

std::vector<xcb_window_t> VirtualDesktop::managedWindows() const
{
    const auto cookie = xcb_get_property(
        connection(), 0, root(), atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW, 0, 100);
    const auto clients = own(xcb_get_property_reply(connection(), cookie, nullptr));
    const auto* windows = static_cast<xcb_window_t*>(xcb_get_property_value(clients.get()));
    return {windows, windows + clients->value_len};
}

QStringList VirtualDesktop::windowTitles() const
{
    QStringList titles;
    for (const auto window : managedWindows()) {
        const auto typeCookie = xcb_get_property(
            connection(), 0, window, atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 0, 1);
        const auto type = own(xcb_get_property_reply(connection(), typeCookie, nullptr));
        if (type && type->value_len > 0 &&
            *static_cast<xcb_atom_t*>(xcb_get_property_value(type.get())) ==
                atom("_NET_WM_WINDOW_TYPE_DESKTOP"))
            continue;
        const auto cookie = xcb_get_property(
            connection(), 0, window, atom("_NET_WM_NAME"), atom("UTF8_STRING"), 0, 100);
        const auto title = own(xcb_get_property_reply(connection(), cookie, nullptr));
        if (title && title->value_len > 0) {
            titles << QString::fromUtf8(static_cast<char*>(xcb_get_property_value(title.get())),
                static_cast<qsizetype>(title->value_len));
        }
    }
    return titles;
}

void VirtualDesktop::sendToRoot(xcb_window_t window, const char* type, std::uint32_t value) const
{
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(type);
    message.data.data32[0] = value;
    xcb_send_event(connection(),
        0,
        root(),
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
        reinterpret_cast<const char*>(&message));
    xcb_flush(connection());
}
