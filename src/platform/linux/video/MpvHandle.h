#pragma once

#include <mpv/client.h>

#include <cstdint>
#include <initializer_list>
#include <memory>

/// libmpv's core and the few calls that we make of it. None waits for the core.
struct MpvHandleDeleter {
    void operator()(mpv_handle* handle) const { mpv_terminate_destroy(handle); }
};
using MpvHandle = std::unique_ptr<mpv_handle, MpvHandleDeleter>;

namespace Mpv {

/// A core that plays into a render context only, touches no other file than the one it is told
/// to play, and reads no configuration. Paused. Never null: without libmpv there is no product.
MpvHandle create();

void setFlag(mpv_handle* handle, const char* property, bool value);
void setText(mpv_handle* handle, const char* property, const char* value);
void setDouble(mpv_handle* handle, const char* property, double value);
/// `request` comes back with the answer's event; 0 asks for none in particular.
void command(
    mpv_handle* handle, std::initializer_list<const char*> words, std::uint64_t request = 0);

} // namespace Mpv
