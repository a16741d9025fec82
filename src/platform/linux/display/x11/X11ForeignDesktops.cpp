#include "platform/linux/display/x11/X11ForeignDesktops.h"

#include "platform/linux/display/x11/X11ForeignHints.h"

#include <xcb/shape.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <chrono>
#include <ranges>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto quiet = 300ms; // after the last change
constexpr auto patience = 1s; // after the first, when there is no end to them

/// What was asked about one window. It may be gone by now.
struct Question {
    Question(X11Connection& x11, xcb_window_t asked, bool hasShapes)
        : window(asked),
          attributes(xcb_get_window_attributes(x11.get(), asked)),
          geometry(xcb_get_geometry(x11.get(), asked)),
          origin(xcb_translate_coordinates(x11.get(), asked, x11.root(), 0, 0)),
          opacity(x11.askForProperty(asked, x11.atom("_NET_WM_WINDOW_OPACITY"), XCB_ATOM_CARDINAL)),
          opaqueParts(
              x11.askForProperty(asked, x11.atom("_NET_WM_OPAQUE_REGION"), XCB_ATOM_CARDINAL))
    {
        if (hasShapes)
            shape = xcb_shape_get_rectangles(x11.get(), asked, XCB_SHAPE_SK_BOUNDING);
    }

    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t origin;
    X11PropertyCookie opacity, opaqueParts;
    std::optional<xcb_shape_get_rectangles_cookie_t> shape;
};

/// One of very many rectangles counts as what it lies in.
QRegion regionOf(const xcb_shape_get_rectangles_reply_t& shape)
{
    QRegion region;
    const auto* parts = xcb_shape_get_rectangles_rectangles(&shape);
    const auto count = static_cast<std::size_t>(xcb_shape_get_rectangles_rectangles_length(&shape));
    for (std::size_t i = 0; i < count; ++i) {
        const QRect part(parts[i].x, parts[i].y, parts[i].width, parts[i].height);
        region =
            i < X11ForeignHints::mostParts ? region + part : QRegion(region.boundingRect() | part);
    }
    return region;
}

/// None where it is not shown.
std::optional<X11ForeignDesktop> answer(
    X11Connection& x11, const Question& question, bool doesTransparencyShow)
{
    const auto attributes =
        own(xcb_get_window_attributes_reply(x11.get(), question.attributes, nullptr));
    const auto geometry = own(xcb_get_geometry_reply(x11.get(), question.geometry, nullptr));
    const auto origin = own(xcb_translate_coordinates_reply(x11.get(), question.origin, nullptr));
    const auto opacity = x11.property(question.opacity);
    const auto opaqueParts = x11.property(question.opaqueParts);
    const auto shape =
        question.shape ? own(xcb_shape_get_rectangles_reply(x11.get(), *question.shape, nullptr))
                       : nullptr;
    if (!attributes || !geometry || !origin || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
        return std::nullopt;

    constexpr int depthWithAlpha = 32;
    constexpr std::uint32_t opaque = 0xffffffff;
    const QRect inside(0, 0, geometry->width, geometry->height);
    QRegion area = shape ? regionOf(*shape) & inside : QRegion(inside);
    const bool hasAlpha = doesTransparencyShow && geometry->depth == depthWithAlpha;
    if (hasAlpha)
        area &= X11ForeignHints::opaqueRegion(opaqueParts);
    if (doesTransparencyShow && !opacity.empty() && opacity.front() != opaque)
        area = {};
    const QPoint position(origin->dst_x, origin->dst_y);
    return X11ForeignDesktop{question.window,
        inside.translated(position),
        area.translated(position),
        hasAlpha && area.isEmpty()};
}

} // namespace

X11ForeignDesktops::X11ForeignDesktops(X11Connection& connection, X11WindowManager& windowManager)
    : m_connection(connection),
      m_windowManager(windowManager),
      m_settling(
          quiet, [this] { look(); }, patience)
{
    followCompositor();
    m_all = read();
    const auto noteChange = [this] { m_settling.call(); };
    connect(&m_connection, &X11Connection::rootPropertyChanged, this, [this](quint32 atom) {
        if (atom == m_connection.hints()._NET_CLIENT_LIST)
            m_settling.call();
    });
    connect(&m_windowManager, &X11WindowManager::desktopWindowSupportChanged, this, noteChange);
    connect(&m_windowManager, &X11WindowManager::nameChanged, this, noteChange);
}

/// A compositing manager owns a selection.
void X11ForeignDesktops::followCompositor()
{
    auto* const x11 = m_connection.get();
    if (!hasExtension(x11, xcb_xfixes_id))
        return;
    own(xcb_xfixes_query_version_reply(x11, xcb_xfixes_query_version(x11, 2, 0), nullptr));
    xcb_xfixes_select_selection_input(x11,
        m_connection.root(),
        m_connection.atom("_NET_WM_CM_S0"),
        XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
            XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
            XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    const auto* extension = xcb_get_extension_data(x11, &xcb_xfixes_id);
    m_compositorWatch = m_connection.watchKind(
        static_cast<std::uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY),
        [this](const xcb_generic_event_t&) { m_settling.call(); });
}

const X11ForeignDesktop* X11ForeignDesktops::at(const QPoint& point) const
{
    const auto entry = std::find_if(m_all.rbegin(), m_all.rend(), [&](const auto& desktop) {
        return desktop.frame.contains(point);
    });
    return entry == m_all.rend() ? nullptr : &*entry;
}

bool X11ForeignDesktops::contains(xcb_window_t window) const
{
    return std::ranges::find(m_all, window, &X11ForeignDesktop::window) != m_all.end();
}

void X11ForeignDesktops::look()
{
    auto seen = read();
    if (seen == m_all)
        return;
    m_all = std::move(seen);
    Q_EMIT changed();
}

/// At once, because the program that is started in its place may get the same window ID.
void X11ForeignDesktops::forget(xcb_window_t window)
{
    m_watches.erase(window);
    if (std::erase_if(m_all, [&](const auto& desktop) { return desktop.window == window; }) > 0)
        Q_EMIT changed();
}

std::vector<X11ForeignDesktop> X11ForeignDesktops::read()
{
    const auto windows = desktopWindows();
    watch(windows); // before the questions, so that no change falls between
    const bool hasShapes = hasExtension(m_connection.get(), xcb_shape_id);
    std::vector<Question> questions;
    questions.reserve(windows.size());
    for (const auto window : windows)
        questions.emplace_back(m_connection, window, hasShapes);

    const bool isTransparent = doesTransparencyShow();
    std::vector<X11ForeignDesktop> desktops;
    for (const auto& question : questions) {
        if (auto desktop = answer(m_connection, question, isTransparent))
            desktops.push_back(std::move(*desktop));
    }
    return desktops;
}

std::vector<xcb_window_t> X11ForeignDesktops::desktopWindows()
{
    using DesktopWindowSupport = X11WindowManager::DesktopWindowSupport;
    if (m_windowManager.desktopWindowSupport() != DesktopWindowSupport::Managed)
        return {};
    const auto& hints = m_connection.hints();
    auto windows = m_connection.property(
        m_connection.root(), hints._NET_CLIENT_LIST_STACKING, XCB_ATOM_WINDOW);
    std::erase_if(windows, [this](auto window) { return m_connection.isOwn(window); });
    windows.resize(std::min(windows.size(), X11ForeignHints::mostWindows));

    std::vector<X11PropertyCookie> questions;
    questions.reserve(windows.size());
    for (const auto window : windows)
        questions.push_back(
            m_connection.askForProperty(window, hints._NET_WM_WINDOW_TYPE, XCB_ATOM_ATOM));
    std::vector<xcb_window_t> desktops;
    for (std::size_t i = 0; i < windows.size(); ++i) {
        const auto types = m_connection.property(questions[i]);
        if (std::ranges::find(types, hints._NET_WM_WINDOW_TYPE_DESKTOP) != types.end())
            desktops.push_back(windows[i]);
    }
    return desktops;
}

/// Without a compositing manager an alpha channel means nothing. KWin paints black behind windows
/// of type desktop.
bool X11ForeignDesktops::doesTransparencyShow()
{
    const auto cookie =
        xcb_get_selection_owner(m_connection.get(), m_connection.atom("_NET_WM_CM_S0"));
    const auto reply = own(xcb_get_selection_owner_reply(m_connection.get(), cookie, nullptr));
    return reply && reply->owner != XCB_NONE && !m_windowManager.name().startsWith("KWin");
}

void X11ForeignDesktops::watch(const std::vector<xcb_window_t>& windows)
{
    std::erase_if(m_watches, [&](const auto& entry) {
        return std::ranges::find(windows, entry.first) == windows.end();
    });
    for (const auto window : windows) {
        if (m_watches.contains(window))
            continue;
        m_watches.emplace(
            window, m_connection.watch(window, [this, window](const xcb_generic_event_t& event) {
                if (event.response_type == XCB_DESTROY_NOTIFY)
                    forget(window);
                m_settling.call();
            }));
        const std::uint32_t events =
            XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(m_connection.get(), window, XCB_CW_EVENT_MASK, &events);
    }
}
