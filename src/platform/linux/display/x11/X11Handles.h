#pragma once

#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

#include <cstdlib>
#include <memory>

/// Owners of what xcb hands out.
struct X11Deleter {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    template <typename Reply>
    void operator()(Reply* reply) const
    {
        std::free(reply);
    } // NOLINT(cppcoreguidelines-no-malloc): xcb allocates with malloc
};

struct X11HintsDeleter {
    void operator()(xcb_ewmh_connection_t* hints) const
    {
        xcb_ewmh_connection_wipe(hints);
        delete hints;
    }
};

/// The atoms of the window managers' specification
/// (https://specifications.freedesktop.org/wm-spec).
using X11Hints = std::unique_ptr<xcb_ewmh_connection_t, X11HintsDeleter>;

using X11ConnectionHandle = std::unique_ptr<xcb_connection_t, X11Deleter>;

/// A reply, an event or an error.
template <typename Reply>
using X11Reply = std::unique_ptr<Reply, X11Deleter>;

/// To be asked before any request of an extension: xcb answers one that the server does not have
/// by closing the connection.
inline bool hasExtension(xcb_connection_t* connection, xcb_extension_t& extension)
{
    const auto* reply = xcb_get_extension_data(connection, &extension); // belongs to xcb
    return reply && reply->present;
}

/// Takes a reply that xcb allocated. Usage: `own(xcb_..._reply(connection, cookie, nullptr))`.
template <typename Reply>
X11Reply<Reply> own(Reply* reply)
{
    return X11Reply<Reply>(reply);
}
