#pragma once

#include "platform/linux/video/FramePresenter.h"
#include "platform/linux/video/PictureStatistics.h"

#include <mpv/client.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// Takes pictures from libmpv's render context, draws them and shows them at their time. Everything
/// but `pictureCount` belongs to the render thread.
class PictureLoop {
public:
    /// `wake` is called on any thread when the core has news; `tellSeen` on this one, when no
    /// target has followed for a while, and when one does again.
    PictureLoop(mpv_handle& core,
        PictureStatistics& statistics,
        std::function<void()> wake,
        std::function<void(bool isSeen)> tellSeen);
    ~PictureLoop();
    PictureLoop(const PictureLoop&) = delete;
    PictureLoop& operator=(const PictureLoop&) = delete;

    using PresenterFactory = std::function<std::unique_ptr<FramePresenter>()>;
    /// Lets go of the presenter that there is and takes a new one; with an empty factory none. The
    /// value of "hwdec" that fits, or null when nothing can be presented.
    const char* changePresenter(const PresenterFactory& make);
    void setTargets(const std::vector<FrameTarget>& targets);
    /// The core has no picture any more, until it offers the next one.
    void forgetPicture();
    void presentAgain();
    void clear();
    void clearIfNothingWasShown();

    /// Waits until the display has news, something is due, or `wakeDescriptor` is readable.
    void wait(int wakeDescriptor);
    /// Does what can be done now, and never waits.
    void run();

    std::uint64_t pictureCount() const { return m_pictureCount; }

private:
    using Clock = std::chrono::steady_clock;
    using Time = std::optional<Clock::time_point>;

    bool canDraw() const { return m_presenter->hasTargets() && m_presenter->isReady(); }
    bool hasSomethingToDraw() const;
    Time wakeUpTime() const;
    void present();
    void takePicture();
    void waitForTarget();
    void setIsSeen(bool isSeen);
    void skipPicture();
    void discardPicture();
    void draw();
    /// Whether it is a new one.
    bool count(const mpv_render_frame_info& picture);
    Clock::time_point timeOf(const mpv_render_frame_info& picture) const;

    mpv_handle& m_core; // for its clock, which any thread may ask
    PictureStatistics& m_statistics;
    std::function<void()> m_wake;
    std::function<void(bool)> m_tellSeen;
    std::unique_ptr<FramePresenter> m_presenter;
    RenderContext m_context; // from the first presenter on
    /// Before there is anything, the windows keep showing what was on the screen before them.
    enum class Content { Nothing, Picture, LostPicture, Black } m_content = Content::Nothing;
    bool m_isOffered = false; // the core has a picture that has not been taken
    bool m_isNew = false;     // what was drawn last has not been shown
    bool m_isStale = false;   // what was drawn last is something else than `m_content`
    Time m_due;               // when what was drawn is shown; none when it has been
    Time m_notFollowed;       // since when pictures are offered and no target follows
    bool m_isSeen = true;     // as it was told
    std::atomic<std::uint64_t> m_pictureCount = 0;
};
