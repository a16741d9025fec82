#include "platform/linux/display/x11/X11WindowStack.h"

#include "platform/linux/display/x11/X11ForeignHints.h"

#include <xcb/shape.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

using X11ForeignHints::mostWindows;

namespace {

using Values = std::vector<std::uint32_t>;

bool contains(const Values& values, std::uint32_t value)
{
    return std::ranges::find(values, value) != values.end();
}

/// What is known about one window. It may be gone by now, in which case that is nothing.
struct Knowledge {
    X11Reply<xcb_get_window_attributes_reply_t> attributes;
    X11Reply<xcb_get_geometry_reply_t> geometry;
    X11Reply<xcb_translate_coordinates_reply_t> origin; // inside the border, in root coordinates
    X11Reply<xcb_shape_query_extents_reply_t> shape;
    Values types, opacity, opaqueParts, frameExtents, icccmState, states, desktop;

    bool isVisible() const
    {
        return attributes && geometry && origin &&
               attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT &&
               attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    }

    QRect frame() const
    {
        const int border = geometry->border_width;
        return QRect(origin->dst_x, origin->dst_y, geometry->width, geometry->height)
            .adjusted(-border, -border, border, border);
    }
};

/// The same as long as it is being asked for: all windows are asked before the first answers.
class Question {
public:
    Question(X11Connection& x11, xcb_window_t window, bool hasShapes)
        : m_x11(x11),
          m_attributes(xcb_get_window_attributes(x11.get(), window)),
          m_geometry(xcb_get_geometry(x11.get(), window)),
          m_origin(xcb_translate_coordinates(x11.get(), window, x11.root(), 0, 0)),
          m_types(x11.askForProperty(window, x11.hints()._NET_WM_WINDOW_TYPE, XCB_ATOM_ATOM)),
          m_opacity(
              x11.askForProperty(window, x11.atom("_NET_WM_WINDOW_OPACITY"), XCB_ATOM_CARDINAL)),
          m_opaqueParts(
              x11.askForProperty(window, x11.atom("_NET_WM_OPAQUE_REGION"), XCB_ATOM_CARDINAL)),
          m_frameExtents(
              x11.askForProperty(window, x11.hints()._NET_FRAME_EXTENTS, XCB_ATOM_CARDINAL)),
          m_icccmState(x11.askForProperty(window, x11.atom("WM_STATE"), x11.atom("WM_STATE"))),
          m_states(x11.askForProperty(window, x11.hints()._NET_WM_STATE, XCB_ATOM_ATOM)),
          m_desktop(x11.askForProperty(window, x11.hints()._NET_WM_DESKTOP, XCB_ATOM_CARDINAL))
    {
        if (hasShapes)
            m_shape = xcb_shape_query_extents(x11.get(), window);
    }

    /// To be called once: xcb keeps an answer until it is taken.
    Knowledge answer() const
    {
        auto* const x11 = m_x11.get();
        return {own(xcb_get_window_attributes_reply(x11, m_attributes, nullptr)),
            own(xcb_get_geometry_reply(x11, m_geometry, nullptr)),
            own(xcb_translate_coordinates_reply(x11, m_origin, nullptr)),
            m_shape ? own(xcb_shape_query_extents_reply(x11, *m_shape, nullptr)) : nullptr,
            m_x11.property(m_types),
            m_x11.property(m_opacity),
            m_x11.property(m_opaqueParts),
            m_x11.property(m_frameExtents),
            m_x11.property(m_icccmState),
            m_x11.property(m_states),
            m_x11.property(m_desktop)};
    }

private:
    X11Connection& m_x11;
    xcb_get_window_attributes_cookie_t m_attributes;
    xcb_get_geometry_cookie_t m_geometry;
    xcb_translate_coordinates_cookie_t m_origin;
    X11PropertyCookie m_types, m_opacity, m_opaqueParts, m_frameExtents, m_icccmState, m_states,
        m_desktop;
    std::optional<xcb_shape_query_extents_cookie_t> m_shape;
};

/// Judges foreign windows.
class Judge {
public:
    /// `isManaged`: a window manager describes the windows. Where none does, what a former one
    /// wrote about them is out of date.
    Judge(X11Connection& x11, bool isManaged) : m_x11(x11), m_isManaged(isManaged)
    {
        if (isManaged)
            m_currentDesktop =
                x11.property(x11.root(), x11.hints()._NET_CURRENT_DESKTOP, XCB_ATOM_CARDINAL);
    }

    QRegion opaqueArea(const Knowledge& window) const
    {
        constexpr std::uint32_t opaque = 0xffffffff;
        if (!window.isVisible() || (window.shape && window.shape->bounding_shaped) ||
            (!window.opacity.empty() && window.opacity.front() != opaque) ||
            contains(window.types, m_x11.hints()._NET_WM_WINDOW_TYPE_DESKTOP) ||
            (m_isManaged && isElsewhere(window)))
            return {};
        constexpr int depthWithAlpha = 32;
        if (window.geometry->depth == depthWithAlpha)
            return opaqueParts(window);
        return m_isManaged ? withFrame(window) : window.frame();
    }

private:
    bool isElsewhere(const Knowledge& window) const
    {
        constexpr std::uint32_t normal = 1; // ICCCM 4.1.3.1
        constexpr std::uint32_t allDesktops = 0xffffffff;
        return (!window.icccmState.empty() && window.icccmState.front() != normal) ||
               contains(window.states, m_x11.hints()._NET_WM_STATE_HIDDEN) ||
               (!window.desktop.empty() && window.desktop.front() != allDesktops &&
                   !m_currentDesktop.empty() && window.desktop != m_currentDesktop);
    }

    /// Toolkits that draw their own frames and shadows say which part lets nothing through.
    static QRegion opaqueParts(const Knowledge& window)
    {
        return X11ForeignHints::opaqueRegion(window.opaqueParts)
                   .translated(window.origin->dst_x, window.origin->dst_y) &
               window.frame();
    }

    static QRect withFrame(const Knowledge& window)
    {
        using X11ForeignHints::coordinate;
        const auto& extents = window.frameExtents; // left, right, top, bottom
        if (extents.size() < 4)
            return window.frame();
        return window.frame().adjusted(-coordinate(extents[0]),
            -coordinate(extents[2]),
            coordinate(extents[1]),
            coordinate(extents[3]));
    }

    X11Connection& m_x11;
    bool m_isManaged;
    Values m_currentDesktop;
};

/// What window managers put around windows.
std::set<xcb_window_t> frames(X11Connection& x11, const std::set<xcb_window_t>& windows)
{
    std::vector<xcb_query_tree_cookie_t> questions;
    questions.reserve(windows.size());
    for (const auto window : windows)
        questions.push_back(xcb_query_tree(x11.get(), window));
    std::set<xcb_window_t> parents;
    for (const auto question : questions) {
        if (const auto answer = own(xcb_query_tree_reply(x11.get(), question, nullptr)))
            parents.insert(answer->parent);
    }
    return parents;
}

Values rootChildren(X11Connection& x11)
{
    const auto tree =
        own(xcb_query_tree_reply(x11.get(), xcb_query_tree(x11.get(), x11.root()), nullptr));
    if (!tree)
        return {};
    const auto* windows = xcb_query_tree_children(tree.get());
    return {windows, windows + xcb_query_tree_children_length(tree.get())};
}

/// Windows that bypass the window manager are not on its list. Those that are as large as a monitor
/// and in front of ours are screen lockers and screen savers; menus and tooltips are smaller.
Values lockers(X11Connection& x11, const std::set<xcb_window_t>& ours)
{
    const auto children = rootChildren(x11);
    const auto parents = frames(x11, ours);
    const auto lowest = std::ranges::find_if(children,
        [&](xcb_window_t child) { return ours.contains(child) || parents.contains(child); });
    struct Pending {
        xcb_window_t window;
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_geometry_cookie_t geometry;
    };
    std::vector<Pending> pending;
    for (auto child = lowest; child != children.end() && pending.size() < mostWindows; ++child)
        pending.push_back({*child,
            xcb_get_window_attributes(x11.get(), *child),
            xcb_get_geometry(x11.get(), *child)});

    constexpr int smallest = 400; // pixels; no monitor is smaller
    Values found;
    for (const auto& [window, attributesCookie, geometryCookie] : pending) {
        const auto attributes =
            own(xcb_get_window_attributes_reply(x11.get(), attributesCookie, nullptr));
        const auto geometry = own(xcb_get_geometry_reply(x11.get(), geometryCookie, nullptr));
        if (attributes && geometry && attributes->override_redirect != 0 &&
            attributes->map_state == XCB_MAP_STATE_VIEWABLE && geometry->width >= smallest &&
            geometry->height >= smallest && !ours.contains(window))
            found.push_back(window);
    }
    return found;
}

} // namespace

std::vector<StackedWindow> X11WindowStack::read(
    X11Connection& x11, X11WindowManager& windowManager, const std::set<xcb_window_t>& ours)
{
    const auto listName = x11.hints()._NET_CLIENT_LIST_STACKING;
    Values windows;
    if (windowManager.supports(listName))
        windows = x11.property(x11.root(), listName, XCB_ATOM_WINDOW);
    const bool isManaged = !windows.empty();
    if (!isManaged)
        windows = rootChildren(x11);
    if (isManaged)
        std::ranges::copy(lockers(x11, ours), std::back_inserter(windows));
    std::reverse(windows.begin(), windows.end()); // all are told from the bottom
    windows.resize(std::min(windows.size(), mostWindows));
    // Those of ours that bypass the window manager are not on its list; they are at the bottom.
    for (const auto window : ours) {
        if (!contains(windows, window))
            windows.push_back(window);
    }

    const bool hasShapes = hasExtension(x11.get(), xcb_shape_id);
    std::vector<Question> questions;
    questions.reserve(windows.size());
    for (const auto window : windows)
        questions.emplace_back(x11, window, hasShapes);

    const Judge judge(x11, isManaged);
    std::vector<StackedWindow> stack;
    for (std::size_t i = 0; i < windows.size(); ++i) {
        const auto knowledge = questions[i].answer();
        if (!ours.contains(windows[i]))
            stack.push_back({StackedWindow::Kind::Foreign, judge.opaqueArea(knowledge)});
        else if (knowledge.isVisible())
            stack.push_back({StackedWindow::Kind::Ours, knowledge.frame(), windows[i]});
    }
    return stack;
}
