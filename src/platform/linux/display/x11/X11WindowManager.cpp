#include "platform/linux/display/x11/X11WindowManager.h"

#include "platform/linux/display/x11/X11Monitors.h"

#include <algorithm>
#include <chrono>
#include <string_view>

using namespace std::chrono_literals;

namespace {

/// Recent ones have an extension that says so; older ones name their outputs so.
bool isXwayland(X11Connection& x11)
{
    constexpr std::string_view name = "XWAYLAND";
    const auto cookie = xcb_query_extension(x11.get(), name.size(), name.data());
    const auto extension = own(xcb_query_extension_reply(x11.get(), cookie, nullptr));
    if (extension && extension->present)
        return true;
    return std::ranges::any_of(X11Monitors::read(x11),
        [](const Screen& monitor) { return monitor.name.startsWith(u"XWAYLAND"); });
}

QByteArray readName(X11Connection& x11, xcb_window_t checkWindow)
{
    constexpr std::uint32_t longestInWords = 64;
    const auto& hints = x11.hints();
    const auto cookie = xcb_get_property(
        x11.get(), 0, checkWindow, hints._NET_WM_NAME, hints.UTF8_STRING, 0, longestInWords);
    const auto reply = own(xcb_get_property_reply(x11.get(), cookie, nullptr));
    if (!reply || reply->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
        xcb_get_property_value_length(reply.get())};
}

} // namespace

X11WindowManager::X11WindowManager(X11Connection& connection)
    : m_connection(connection), m_isXwayland(isXwayland(connection)), m_settling(300ms, [this] {
          const auto before = m_desktopWindowSupport;
          const auto nameBefore = m_name;
          probe();
          if (m_desktopWindowSupport != before)
              Q_EMIT desktopWindowSupportChanged();
          else if (m_name != nameBefore)
              Q_EMIT nameChanged();
      })
{
    probe();
    connect(&m_connection, &X11Connection::rootPropertyChanged, this, [this](quint32 atom) {
        if (atom == m_connection.hints()._NET_SUPPORTING_WM_CHECK ||
            atom == m_connection.hints()._NET_SUPPORTED)
            m_settling.call();
    });
}

/// The window that a running window manager keeps: named on the root window and, against a
/// leftover of one that crashed, on itself.
xcb_window_t X11WindowManager::checkWindow()
{
    const auto name = m_connection.hints()._NET_SUPPORTING_WM_CHECK;
    const auto named = m_connection.property(m_connection.root(), name, XCB_ATOM_WINDOW);
    if (named.empty())
        return XCB_NONE;
    return m_connection.property(named.front(), name, XCB_ATOM_WINDOW) == named ? named.front()
                                                                                : XCB_NONE;
}

void X11WindowManager::probe()
{
    m_checkWindowWatch.reset();
    m_name.clear();
    m_desktopWindowSupport =
        m_isXwayland ? DesktopWindowSupport::Impossible : DesktopWindowSupport::Bypassing;
    const auto window = checkWindow();
    if (window == XCB_NONE)
        return;
    m_name = readName(m_connection, window);

    // One that is killed leaves its properties behind, but not its window.
    m_checkWindowWatch = m_connection.watch(window, [this](const xcb_generic_event_t& event) {
        if (event.response_type == XCB_DESTROY_NOTIFY)
            m_settling.call();
    });
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection.get(), window, XCB_CW_EVENT_MASK, &events);

    if (supports(m_connection.hints()._NET_WM_WINDOW_TYPE_DESKTOP))
        m_desktopWindowSupport = DesktopWindowSupport::Managed;
}

bool X11WindowManager::supports(xcb_atom_t hint)
{
    if (checkWindow() == XCB_NONE)
        return false;
    const auto supported = m_connection.property(
        m_connection.root(), m_connection.hints()._NET_SUPPORTED, XCB_ATOM_ATOM);
    return std::ranges::find(supported, hint) != supported.end();
}
