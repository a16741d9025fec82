#include "platform/linux/x11/X11WindowManager.h"

#include <algorithm>
#include <chrono>

using namespace std::chrono_literals;

X11WindowManager::X11WindowManager(X11Connection& connection) : m_connection(connection)
{
    probe();
    m_settling.setSingleShot(true);
    m_settling.setInterval(300ms);
    connect(&m_settling, &QTimer::timeout, this, [this] {
        const auto before = m_knowsDesktopWindows;
        probe();
        if (m_knowsDesktopWindows != before)
            Q_EMIT knowsDesktopWindowsChanged();
    });
    connect(&m_connection, &X11Connection::rootPropertyChanged, this, [this](quint32 atom) {
        if (atom == m_connection.atom("_NET_SUPPORTING_WM_CHECK") ||
            atom == m_connection.atom("_NET_SUPPORTED"))
            m_settling.start();
    });
}

/// The window that a running window manager keeps: named on the root window and, against a
/// leftover of one that crashed, on itself.
xcb_window_t X11WindowManager::checkWindow()
{
    const auto named =
        m_connection.property(m_connection.root(), "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW);
    if (named.empty())
        return XCB_NONE;
    return m_connection.property(named.front(), "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW) ==
                   named
               ? named.front()
               : XCB_NONE;
}

void X11WindowManager::probe()
{
    m_checkWindowWatch.reset();
    m_knowsDesktopWindows = false;
    const auto window = checkWindow();
    if (window == XCB_NONE)
        return;

    // One that is killed leaves its properties behind, but not its window.
    m_checkWindowWatch = m_connection.watch(window, [this](const xcb_generic_event_t& event) {
        if (event.response_type == XCB_DESTROY_NOTIFY)
            m_settling.start();
    });
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection.get(), window, XCB_CW_EVENT_MASK, &events);

    const auto supported =
        m_connection.property(m_connection.root(), "_NET_SUPPORTED", XCB_ATOM_ATOM);
    m_knowsDesktopWindows =
        std::ranges::find(supported, m_connection.atom("_NET_WM_WINDOW_TYPE_DESKTOP")) !=
        supported.end();
}
