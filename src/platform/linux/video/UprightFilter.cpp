#include "platform/linux/video/UprightFilter.h"

#include "platform/linux/video/MpvNode.h"

#include <cstring>

namespace {

/// How far the first video track has to be turned clockwise: 0, 90, 180 or 270 degrees.
std::int64_t rotation(const mpv_node& tracks)
{
    if (tracks.format != MPV_FORMAT_NODE_ARRAY)
        return 0;
    for (int i = 0; i < tracks.u.list->num; ++i) {
        const auto& track = tracks.u.list->values[i];
        const auto* type = MpvNode::child(track, "type", MPV_FORMAT_STRING);
        const auto* isCover = MpvNode::child(track, "albumart", MPV_FORMAT_FLAG);
        if (!type || std::strcmp(type->u.string, "video") != 0 || (isCover && isCover->u.flag))
            continue;
        const auto* degrees = MpvNode::child(track, "demux-rotation", MPV_FORMAT_INT64);
        return degrees ? (degrees->u.int64 + 45) / 90 * 90 % 360 : 0; // to a quarter turn
    }
    return 0;
}

const char* filterFor(std::int64_t degrees)
{
    switch (degrees) {
    case 90:
        return "lavfi=[transpose=clock]";
    case 180:
        return "lavfi=[hflip,vflip]";
    case 270:
        return "lavfi=[transpose=cclock]";
    default:
        return nullptr;
    }
}

} // namespace

UprightFilter::UprightFilter(mpv_handle& core, std::uint64_t firstRequest)
    : m_core(core), m_trackRequest(firstRequest), m_filterRequest(firstRequest + 1)
{
    mpv_hook_add(&m_core, 0, "on_preloaded", 0);
}

void UprightFilter::handle(const mpv_event& event)
{
    if (event.event_id == MPV_EVENT_HOOK) {
        askForTracks(static_cast<const mpv_event_hook*>(event.data)->id);
    } else if (event.event_id == MPV_EVENT_GET_PROPERTY_REPLY &&
               event.reply_userdata == m_trackRequest) {
        const auto& property = *static_cast<const mpv_event_property*>(event.data);
        if (event.error >= 0 && property.format == MPV_FORMAT_NODE)
            setFilter(*static_cast<const mpv_node*>(property.data));
        else
            goOn();
    } else if (event.event_id == MPV_EVENT_SET_PROPERTY_REPLY &&
               event.reply_userdata == m_filterRequest) {
        goOn();
    }
}

void UprightFilter::askForTracks(std::uint64_t hook)
{
    m_hook = hook;
    if (mpv_get_property_async(&m_core, m_trackRequest, "track-list", MPV_FORMAT_NODE) < 0)
        goOn();
}

void UprightFilter::setFilter(const mpv_node& tracks)
{
    const char* filter = filterFor(rotation(tracks));
    // The option belongs to this file and is gone with it.
    if (!filter ||
        mpv_set_property_async(
            &m_core, m_filterRequest, "file-local-options/vf", MPV_FORMAT_STRING, &filter) < 0)
        goOn();
}

void UprightFilter::goOn()
{
    mpv_hook_continue(&m_core, m_hook);
}
