#pragma once

#include "platform/linux/display/CanvasMemory.h"
#include "platform/linux/display/wayland/WaylandHandles.h"
#include "platform/linux/display/wayland/WaylandSurface.h"
#include "platform/linux/video/CpuDrawing.h"
#include "platform/linux/video/FramePresenter.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

/// Pictures drawn by the CPU into memory shared with the compositor (wl_shm), one canvas for each
/// size of view. A target follows while the compositor answers each picture with a frame callback;
/// one that is hidden, asleep or hung does not, and keeps what it has.
class WaylandCpuPresenter : public FramePresenter {
public:
    /// Uses the connection on the render thread with an event queue of its own.
    WaylandCpuPresenter(wl_display& display, wl_shm& shm);
    ~WaylandCpuPresenter() override;

    RenderContext createContext(mpv_handle& core) override
    {
        return CpuDrawing::createContext(core);
    }
    const char* hardwareDecoding() const override { return CpuDrawing::hardwareDecoding; }
    int descriptor() const override;
    void beginWait() override;
    void endWait(bool isReadable) override;
    void setTargets(const std::vector<FrameTarget>& targets) override;
    bool hasTargets() const override { return !m_targets.empty(); }
    bool isReady() const override;
    bool isBehind() const override;
    bool draw(mpv_render_context& context) override;
    void clear() override;
    void present() override;

private:
    /// One picture in memory, and the buffers that show parts of it. It may be drawn into when the
    /// compositor has released all of them. A buffer of its own for each target, because a buffer
    /// on two surfaces is never told to be released.
    class Slot;
    class Canvas;
    class Target;
    using Generation = std::uint64_t; // of pictures; 0 for none

    template <typename Paint>
    bool drawCanvases(const Paint& paint);
    void wakeMainThread();
    void catchUp();

    wl_display& m_display;
    WaylandHandle<wl_event_queue> m_queue;
    WaylandWrapper<wl_shm> m_shm;
    std::vector<std::unique_ptr<Canvas>> m_canvases;
    std::vector<std::unique_ptr<Target>> m_targets;
    Generation m_drawn = 0;
    Generation m_presented = 0;
    bool m_isReading = false;
};
