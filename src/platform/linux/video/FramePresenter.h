#pragma once

#include "platform/linux/video/FrameTarget.h"
#include "platform/linux/video/RenderContext.h"

#include <vector>

/// Draws pictures and shows them on the surfaces of one display server, in one way of several. All
/// calls come from the render thread, the construction too. Nothing here may wait for the display.
class FramePresenter {
public:
    FramePresenter() = default;
    virtual ~FramePresenter() = default;
    FramePresenter(const FramePresenter&) = delete;
    FramePresenter& operator=(const FramePresenter&) = delete;

    /// Null when this way of drawing does not work here.
    virtual RenderContext createContext(mpv_handle& core) = 0;
    /// The value of libmpv's option "hwdec" whose pictures it can draw.
    virtual const char* hardwareDecoding() const = 0;

    /// Readable when the display server has sent something; negative when it never will again.
    virtual int descriptor() const = 0;
    /// Called before and after each wait for the descriptor, in pairs.
    virtual void beginWait() = 0;
    virtual void endWait(bool isReadable) = 0;

    virtual void setTargets(const std::vector<FrameTarget>& targets) = 0;
    /// Whether there is anything to draw for.
    virtual bool hasTargets() const = 0;
    /// Whether a new picture may be drawn: some target would show it at once. Targets that do not
    /// follow never hold up the others.
    virtual bool isReady() const = 0;

    /// Whether a target that follows again shows an older picture than was drawn last, and none
    /// that is drawn already would do.
    virtual bool isBehind() const = 0;

    /// Draws the context's current picture once for each size of view. False when it could not take
    /// the picture from the context, for want of memory.
    virtual bool draw(mpv_render_context& context) = 0;
    /// Makes the picture black.
    virtual void clear() = 0;
    /// Shows what was drawn last on every target that follows; on the others as soon as they do.
    virtual void present() = 0;
};
