#include "platform/linux/display/x11/X11Blanking.h"

#include <xcb/dpms.h>
#include <xcb/screensaver.h>

#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr auto whileAwake = 1s;
constexpr auto whileAsleep = 400ms; // people wait for the picture

} // namespace

X11Blanking::X11Blanking(X11Connection& connection) : m_connection(connection)
{
    if (hasExtension(m_connection.get(), xcb_screensaver_id)) {
        connect(
            &m_connection, &X11Connection::screenSaverChanged, this, &X11Blanking::askScreenSaver);
        askScreenSaver();
    }
    if (hasExtension(m_connection.get(), xcb_dpms_id)) {
        connect(&m_question, &QTimer::timeout, this, &X11Blanking::askMonitors);
        askMonitors();
    }
}

void X11Blanking::askScreenSaver()
{
    const auto reply = own(xcb_screensaver_query_info_reply(m_connection.get(),
        xcb_screensaver_query_info(m_connection.get(), m_connection.root()),
        nullptr));
    set(m_isSaving, reply && reply->state == XCB_SCREENSAVER_STATE_ON);
}

void X11Blanking::askMonitors()
{
    const auto reply =
        own(xcb_dpms_info_reply(m_connection.get(), xcb_dpms_info(m_connection.get()), nullptr));
    set(m_isAsleep, reply && reply->state != 0 && reply->power_level != XCB_DPMS_DPMS_MODE_ON);
    m_question.start(m_isAsleep ? whileAsleep : whileAwake);
}

void X11Blanking::set(bool& state, bool value)
{
    const bool wasBlanked = isBlanked();
    state = value;
    if (isBlanked() != wasBlanked)
        Q_EMIT changed();
}
