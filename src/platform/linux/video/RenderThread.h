#pragma once

#include "platform/linux/video/PictureLoop.h"

#include <cstdint>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

/// The one thread that draws and presents pictures. It owns libmpv's render context and but for the
/// clock makes no other call of libmpv. Other threads, libmpv's among them, only queue orders.
class RenderThread {
public:
    /// `tellSeen` is called on this thread when no target has followed for a while, and when one
    /// does again.
    RenderThread(
        mpv_handle& core, PictureStatistics& statistics, std::function<void(bool isSeen)> tellSeen);
    /// Frees the render context, which has to be before the core is destroyed.
    ~RenderThread();
    RenderThread(const RenderThread&) = delete;
    RenderThread& operator=(const RenderThread&) = delete;

    using PresenterFactory = PictureLoop::PresenterFactory;
    /// Presents in this way from now on; with an empty factory not at all. Returns when the former
    /// presenter is gone and the render context is there, which has to be before anything is
    /// loaded: the value of "hwdec" that fits, or null when nothing can be presented.
    const char* setPresenter(PresenterFactory make);

    /// `owner` tells targets apart; it is not looked into.
    void setTarget(const void* owner, const FrameTarget& target);
    void removeTarget(const void* owner);
    /// The core has stopped decoding pictures: what is shown stays until it goes on.
    void forgetPicture();
    /// Shows the latest picture once more.
    void presentAgain();
    /// Shows black until the next picture comes.
    void clear();
    /// The same if there has never been a picture: instead of what other windows left behind.
    void clearIfNothingWasShown();

    /// Grows with every new picture of a video that was taken from the core, seen or not. It has
    /// grown when the core goes on.
    std::uint64_t pictureCount() const { return m_loop->pictureCount(); }

private:
    /// What the thread has been told and has not done yet.
    struct Orders {
        std::optional<PresenterFactory> presenter;
        std::promise<const char*> presenterAnswer;
        std::optional<std::vector<FrameTarget>> targets;
        bool forgetPicture = false;
        bool presentAgain = false;
        bool clear = false;
        bool clearIfNothingWasShown = false;
        bool quit = false;
    };

    void order(const std::function<void(Orders&)>& change);
    void wake() const;
    void run();
    Orders takeOrders();
    void obey(Orders& orders);

    int m_wakeDescriptor;
    std::mutex m_mutex; // guards the two below
    Orders m_orders;
    std::map<const void*, FrameTarget> m_targets;
    std::unique_ptr<PictureLoop> m_loop; // the thread's
    std::thread m_thread;                // last, so that it finds the rest
};
