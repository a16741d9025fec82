#pragma once

#include <mpv/render.h>

#include <memory>

struct RenderContextDeleter {
    void operator()(mpv_render_context* context) const { mpv_render_context_free(context); }
};

/// libmpv's way to hand out pictures; one a core. Freed before the core.
using RenderContext = std::unique_ptr<mpv_render_context, RenderContextDeleter>;
