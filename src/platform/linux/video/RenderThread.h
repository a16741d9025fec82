#pragma once

#include "platform/linux/video/FramePresenter.h"

#include <mpv/client.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

/// The one thread that draws and presents pictures. It owns libmpv's render context and but for the
/// clock makes no other call of libmpv. Other threads, libmpv's among them, only leave word and
/// wake it up.
class RenderThread {
public:
    using PresenterFactory = std::function<std::unique_ptr<FramePresenter>()>;

    /// Returns when the render context is there, which has to be before anything is loaded.
    RenderThread(mpv_handle* core, PresenterFactory makePresenter);
    /// Frees the render context, which has to be before the core is destroyed.
    ~RenderThread();
    RenderThread(const RenderThread&) = delete;
    RenderThread& operator=(const RenderThread&) = delete;

    /// `owner` tells surfaces apart; it is not looked into.
    void setSurface(const void* owner, const Surface& surface);
    void removeSurface(const void* owner);
    /// Puts the latest picture into the windows once more.
    void presentAgain();
    /// Shows black until the next picture comes.
    void clear();

    /// The same if there has never been a picture: instead of what other windows left behind.
    void clearIfNothingWasShown();

    /// Grows with every new picture of a video that was taken from the core, seen or not. It has
    /// grown when the core goes on.
    std::uint64_t pictureCount() const { return m_pictureCount; }

private:
    /// What the thread has been told and has not done yet.
    struct Orders {
        bool surfacesChanged = false;
        bool presentAgain = false;
        bool clear = false;
        bool clearIfNothingWasShown = false;
        bool quit = false;
    };

    void loop(mpv_render_context& context, FramePresenter& presenter);
    using Clock = std::chrono::steady_clock;
    using Due = std::optional<Clock::time_point>;
    void waitForWork(const FramePresenter& presenter, const Due& due) const;
    void count(const mpv_render_frame_info& picture);
    Due timeOf(const mpv_render_frame_info& picture) const;
    std::pair<Orders, std::vector<Surface>> takeOrders();
    void wake() const;
    void order(const std::function<void(Orders&)>& change);

    int m_wakeDescriptor;
    mpv_handle* m_core; // for its clock, which any thread may ask
    std::atomic<std::uint64_t> m_pictureCount = 0;
    std::mutex m_mutex; // guards the two below
    Orders m_orders;
    std::map<const void*, Surface> m_surfaces;
    std::thread m_thread;
};
