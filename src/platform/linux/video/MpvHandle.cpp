#include "platform/linux/video/MpvHandle.h"

#include <QtGlobal>

#include <algorithm>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Option = std::pair<const char*, const char*>;

constexpr Option options[] = {
    {"vo", "libmpv"},
    {"pause", "yes"},
    {"idle", "yes"},
    {"keep-open", "yes"},
    {"keep-open-pause", "no"},
    {"panscan", "1.0"},
    {"video-rotate", "no"}, // UprightFilter does
    {"hwdec", "no"},        // until there is a presenter that says what fits
    {"sws-allow-zimg", "no"},
    {"sws-fast", "yes"},
    {"sws-scaler", "fast-bilinear"},
    // Nothing but the file: no configuration, scripts, key bindings, neighbours, references to
    // other files or sites, subtitles or remembered positions.
    {"config", "no"},
    {"load-scripts", "no"},
    // libmpv's own, under their names in several versions
    {"load-auto-profiles", "no"},
    {"load-commands", "no"},
    {"load-console", "no"},
    {"load-osd-console", "no"},
    {"load-positioning", "no"},
    {"load-select", "no"},
    {"load-stats-overlay", "no"},
    {"ytdl", "no"},
    {"osd-level", "0"},
    {"sid", "no"},
    {"sub-auto", "no"},
    {"audio-file-auto", "no"},
    {"cover-art-auto", "no"},
    {"audio-display", "no"},
    {"ordered-chapters", "no"},
    {"access-references", "no"},
    {"resume-playback", "no"},
    {"input-default-bindings", "no"},
    {"input-vo-keyboard", "no"},
    {"terminal", "no"},
    {"stop-screensaver", "no"},
    // What desktops have. The others of libmpv's list only cost time where there is no sound.
    {"ao", "pipewire,pulse,alsa"},
    {"audio-client-name", "TavelorHelper"},
    // A local file needs little read ahead.
    {"cache", "no"},
    {"demuxer-max-bytes", "8MiB"},
    {"demuxer-max-back-bytes", "0"},
};

/// Each decoding thread keeps pictures of its own, 3 MB each at 1080p: more threads than a large
/// video needs would only cost memory.
std::string decodingThreads()
{
    return std::to_string(std::clamp(std::thread::hardware_concurrency(), 1U, 8U));
}

} // namespace

MpvHandle Mpv::create()
{
    MpvHandle handle(mpv_create());
    if (!handle)
        qFatal("libmpv cannot start: out of memory, or the locale's LC_NUMERIC is not C.");
    // An option that another version of libmpv does not know is no reason not to play.
    for (const auto& [name, value] : options)
        mpv_set_option_string(handle.get(), name, value);
    mpv_set_option_string(handle.get(), "vd-lavc-threads", decodingThreads().c_str());
    if (const int error = mpv_initialize(handle.get()); error < 0)
        qFatal("libmpv cannot start: %s", mpv_error_string(error));
    return handle;
}

void Mpv::setFlag(mpv_handle* handle, const char* property, bool value)
{
    int flag = value ? 1 : 0;
    mpv_set_property_async(handle, 0, property, MPV_FORMAT_FLAG, &flag);
}

void Mpv::setText(mpv_handle* handle, const char* property, const char* value)
{
    mpv_set_property_async(handle, 0, property, MPV_FORMAT_STRING, &value);
}

void Mpv::setDouble(mpv_handle* handle, const char* property, double value)
{
    mpv_set_property_async(handle, 0, property, MPV_FORMAT_DOUBLE, &value);
}

void Mpv::command(
    mpv_handle* handle, std::initializer_list<const char*> words, std::uint64_t request)
{
    std::vector<const char*> arguments(words);
    arguments.push_back(nullptr);
    mpv_command_async(handle, request, arguments.data());
}
