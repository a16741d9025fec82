#pragma once

#include "platform/linux/PlayerLayerViewBody.h"

#include <QRect>

#include <mpv/render.h>

#include <vector>

/// Where the picture of one view goes.
struct Surface {
    std::uint32_t window = 0; ///< the display's name of the window
    QSize windowSize;         ///< device pixels
    QRect frame; ///< the view's, relative to the window; the picture is made in this size

    bool operator==(const Surface&) const = default;
};

/// Draws pictures and puts them into windows, in one way of several. All calls come from the
/// render thread, the construction too; nothing here may wait for the display for long.
class FramePresenter {
public:
    FramePresenter() = default;
    virtual ~FramePresenter() = default;
    FramePresenter(const FramePresenter&) = delete;
    FramePresenter& operator=(const FramePresenter&) = delete;

    /// The kind of render context that `draw` needs (MPV_RENDER_API_TYPE_...).
    virtual const char* renderApi() const = 0;

    /// Becomes readable when `dispatch` has something to do.
    virtual int descriptor() const = 0;
    virtual void dispatch() = 0;

    virtual void setSurfaces(const std::vector<Surface>& surfaces) = 0;
    /// Whether there is anything to draw for.
    virtual bool hasSurfaces() const = 0;
    /// Whether the display is done with the last picture, so that a new one may be drawn.
    virtual bool isReady() const = 0;

    /// Draws the context's current picture once for each size of frame.
    virtual void draw(mpv_render_context& context) = 0;
    /// Makes the picture black.
    virtual void clear() = 0;
    /// Puts what was drawn last into every window.
    virtual void present() = 0;
};
