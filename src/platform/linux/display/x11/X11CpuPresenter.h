#pragma once

#include "platform/linux/display/x11/SharedCanvas.h"
#include "platform/linux/video/CpuDrawing.h"
#include "platform/linux/video/FramePresenter.h"

#include <memory>
#include <vector>

/// Pictures drawn by the CPU into memory shared with the X server, one canvas for each size of
/// frame, from which every window takes its part.
class X11CpuPresenter : public FramePresenter {
public:
    X11CpuPresenter();
    ~X11CpuPresenter() override;

    RenderContext createContext(mpv_handle& core) override
    {
        return CpuDrawing::createContext(core);
    }
    const char* hardwareDecoding() const override { return CpuDrawing::hardwareDecoding; }
    int descriptor() const override;
    void beginWait() override { processEvents(); }
    void endWait(bool /*isReadable*/) override { processEvents(); }
    void setTargets(const std::vector<FrameTarget>& targets) override;
    bool hasTargets() const override { return !m_targets.empty(); }
    bool isReady() const override { return m_unconfirmedPictures == 0; }
    bool isBehind() const override { return false; }
    bool draw(mpv_render_context& context) override;
    void clear() override;
    void present() override;

private:
    /// One window and the part of a canvas that it shows.
    struct Target {
        xcb_window_t window;
        xcb_gcontext_t graphics;
        SharedCanvas* canvas;
        QRect source;       ///< in the canvas
        QPoint destination; ///< in the window
    };

    void processEvents();
    void removeTargets();
    void putShared(const Target& target);
    void sendPixels(const Target& target);

    X11ConnectionHandle m_connection;
    std::uint8_t m_shmOpcode = 0;
    std::uint8_t m_shmFirstEvent = 0;
    std::vector<std::unique_ptr<SharedCanvas>> m_canvases;
    std::vector<Target> m_targets;
    /// Pictures that the server has not said to have read. Drawing waits for them, so one canvas
    /// is enough and no window ever shows halves of two pictures.
    int m_unconfirmedPictures = 0;
};
