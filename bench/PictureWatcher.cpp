#include "PictureWatcher.h"

#include <poll.h>
#include <xcb/damage.h>

#include <cstdlib>

namespace {

constexpr int smallestArea = 640 * 360;

}

PictureWatcher::PictureWatcher(const X11Desktop& desktop)
    : m_connection(desktop.connection()), m_damage(xcb_generate_id(m_connection))
{
    const auto* extension = xcb_get_extension_data(m_connection, &xcb_damage_id);
    m_firstEvent = extension->first_event;
    std::free(xcb_damage_query_version_reply(
        m_connection, xcb_damage_query_version(m_connection, 1, 1), nullptr));
    xcb_damage_create(
        m_connection, m_damage, desktop.root(), XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    xcb_flush(m_connection);
    m_clock.start();
}

PictureWatcher::~PictureWatcher()
{
    xcb_damage_destroy(m_connection, m_damage);
    xcb_flush(m_connection);
}

bool PictureWatcher::next(Picture& picture, int milliseconds)
{
    QElapsedTimer waited;
    waited.start();
    for (;;) {
        while (auto* const event = xcb_poll_for_event(m_connection)) {
            const bool isDamage = (event->response_type & 0x7f) == m_firstEvent + XCB_DAMAGE_NOTIFY;
            const auto area = reinterpret_cast<xcb_damage_notify_event_t*>(event)->area;
            std::free(event);
            if (!isDamage || area.width * area.height < smallestArea)
                continue;
            picture = {static_cast<double>(m_clock.nsecsElapsed()) * 1e-9,
                QRect(area.x, area.y, area.width, area.height)};
            return true;
        }
        const auto left = milliseconds - static_cast<int>(waited.elapsed());
        if (left <= 0)
            return false;
        pollfd descriptor{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        poll(&descriptor, 1, left);
    }
}

std::vector<PictureWatcher::Picture> PictureWatcher::watch(
    double seconds, const std::function<void(const Picture&)>& seen)
{
    std::vector<Picture> pictures;
    QElapsedTimer watched;
    watched.start();
    const auto total = static_cast<int>(seconds * 1000);
    for (;;) {
        const auto left = total - static_cast<int>(watched.elapsed());
        Picture picture{};
        if (left <= 0 || !next(picture, left))
            return pictures;
        pictures.push_back(picture);
        if (seen)
            seen(picture);
    }
}
