#include "platform/linux/video/PictureLoop.h"

#include <algorithm>
#include <array>
#include <poll.h>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// How long the core's picture waits for a target that follows. From then on pictures are passed
/// over until one does, so that the video's clock does not stop with the display.
constexpr auto patience = 100ms;
/// And how long until nobody is taken to see them.
constexpr auto unseenPatience = 500ms;

/// While there is no display.
class NoPresenter : public FramePresenter {
    RenderContext createContext(mpv_handle& /*core*/) override { return nullptr; }
    const char* hardwareDecoding() const override { return nullptr; }
    int descriptor() const override { return -1; }
    void beginWait() override {}
    void endWait(bool /*isReadable*/) override {}
    void setTargets(const std::vector<FrameTarget>& /*targets*/) override {}
    bool hasTargets() const override { return false; }
    bool isReady() const override { return false; }
    bool isBehind() const override { return false; }
    bool draw(mpv_render_context& /*context*/) override { return false; }
    void clear() override {}
    void present() override {}
};

mpv_render_frame_info nextPicture(mpv_render_context& context)
{
    mpv_render_frame_info information{};
    mpv_render_context_get_info(&context, {MPV_RENDER_PARAM_NEXT_FRAME_INFO, &information});
    return information;
}

} // namespace

PictureLoop::PictureLoop(mpv_handle& core,
    PictureStatistics& statistics,
    std::function<void()> wake,
    std::function<void(bool isSeen)> tellSeen)
    : m_core(core),
      m_statistics(statistics),
      m_wake(std::move(wake)),
      m_tellSeen(std::move(tellSeen)),
      m_presenter(std::make_unique<NoPresenter>())
{
}

PictureLoop::~PictureLoop()
{
    if (m_context)
        mpv_render_context_set_update_callback(m_context.get(), nullptr, nullptr);
}

const char* PictureLoop::changePresenter(const PresenterFactory& make)
{
    m_presenter = std::make_unique<NoPresenter>(); // the former one goes first
    if (auto presenter = make ? make() : nullptr)
        m_presenter = std::move(presenter);
    if (!m_context)
        m_context = m_presenter->createContext(m_core);
    if (!m_context)
        return nullptr;
    mpv_render_context_set_update_callback(
        m_context.get(), [](void* self) { static_cast<PictureLoop*>(self)->m_wake(); }, this);
    return m_presenter->hardwareDecoding();
}

void PictureLoop::setTargets(const std::vector<FrameTarget>& targets)
{
    m_presenter->setTargets(targets);
    m_isStale = m_content != Content::Nothing;
    m_notFollowed.reset();
    m_due.reset();
}

void PictureLoop::forgetPicture()
{
    if (m_content == Content::Picture)
        m_content = Content::LostPicture;
}

void PictureLoop::presentAgain()
{
    if (!m_isStale && m_content != Content::Nothing)
        present();
}

void PictureLoop::clear()
{
    m_content = Content::Black;
    m_isStale = true;
    m_due.reset();
}

void PictureLoop::clearIfNothingWasShown()
{
    if (m_content == Content::Nothing)
        clear();
}

bool PictureLoop::hasSomethingToDraw() const
{
    return m_isOffered || (m_isStale && m_content != Content::LostPicture);
}

PictureLoop::Time PictureLoop::wakeUpTime() const
{
    if (m_due)
        return m_due;
    if (canDraw() && hasSomethingToDraw())
        return Clock::now();
    if (m_isOffered && m_notFollowed)
        return *m_notFollowed + patience;
    return std::nullopt;
}

void PictureLoop::wait(int wakeDescriptor)
{
    m_presenter->beginWait();
    std::array descriptors{
        pollfd{wakeDescriptor, POLLIN, 0},
        pollfd{m_presenter->descriptor(), POLLIN, 0}, // passed over when it is negative
    };
    const auto wakeUp = wakeUpTime();
    timespec timeout{};
    if (wakeUp) {
        const auto left = std::max(*wakeUp - Clock::now(), Clock::duration::zero());
        timeout.tv_nsec = std::chrono::nanoseconds(left).count();
    }
    ppoll(descriptors.data(), descriptors.size(), wakeUp ? &timeout : nullptr, nullptr);
    m_presenter->endWait(descriptors[1].revents != 0);
}

void PictureLoop::run()
{
    if (!m_context)
        return;
    if (m_due && Clock::now() >= *m_due)
        present();
    takePicture();
}

void PictureLoop::present()
{
    m_presenter->present();
    m_due.reset();
    if (std::exchange(m_isNew, false))
        ++m_statistics.shown;
}

void PictureLoop::takePicture()
{
    m_isStale = m_isStale || m_presenter->isBehind();
    m_isOffered = (mpv_render_context_update(m_context.get()) & MPV_RENDER_UPDATE_FRAME) != 0;
    if (m_due)
        return; // a picture comes ahead of its time; the one before it is shown first
    if (canDraw()) {
        m_notFollowed.reset();
        setIsSeen(true);
        if (hasSomethingToDraw())
            draw();
    } else if (m_isOffered) {
        waitForTarget();
    }
}

void PictureLoop::waitForTarget()
{
    const auto now = Clock::now();
    if (!m_notFollowed)
        m_notFollowed = now;
    const auto waited = now - *m_notFollowed;
    if (waited >= unseenPatience)
        setIsSeen(false);
    if (!m_presenter->hasTargets() || waited >= patience)
        skipPicture();
}

void PictureLoop::setIsSeen(bool isSeen)
{
    if (std::exchange(m_isSeen, isSeen) != isSeen)
        m_tellSeen(isSeen);
}

void PictureLoop::skipPicture()
{
    count(nextPicture(*m_context));
    discardPicture();
    m_content = Content::Picture;
    m_isStale = true;
    m_isOffered = false;
}

/// Takes a picture that nobody will see, or the core would wait for it.
void PictureLoop::discardPicture()
{
    int yes = 1;
    int no = 0;
    mpv_render_param parameters[] = {
        {MPV_RENDER_PARAM_SKIP_RENDERING, &yes},
        {MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &no},
        {MPV_RENDER_PARAM_INVALID, nullptr},
    };
    mpv_render_context_render(m_context.get(), parameters);
}

void PictureLoop::draw()
{
    m_due = Clock::now();
    if (m_isOffered) {
        const auto picture = nextPicture(*m_context);
        m_isNew = count(picture) || m_isNew; // before the core goes on with the next one
        m_due = timeOf(picture);
        m_content = Content::Picture;
    }
    if (m_content != Content::Picture)
        m_presenter->clear();
    else if (!m_presenter->draw(*m_context) && m_isOffered)
        discardPicture();
    m_isOffered = m_isStale = false;
}

bool PictureLoop::count(const mpv_render_frame_info& picture)
{
    // The core also offers its last picture again.
    constexpr std::uint64_t old = MPV_RENDER_FRAME_INFO_REDRAW | MPV_RENDER_FRAME_INFO_REPEAT;
    const bool isNew =
        (picture.flags & MPV_RENDER_FRAME_INFO_PRESENT) != 0 && (picture.flags & old) == 0;
    if (isNew)
        ++m_pictureCount;
    return isNew;
}

PictureLoop::Clock::time_point PictureLoop::timeOf(const mpv_render_frame_info& picture) const
{
    // Nanoseconds since libmpv 0.37, in spite of what render.h says.
    const bool isNanoseconds = mpv_client_api_version() >= MPV_MAKE_VERSION(2, 2);
    const auto target = isNanoseconds ? picture.target_time / 1000 : picture.target_time;
    const auto ahead = std::chrono::microseconds(target - mpv_get_time_us(&m_core));
    // The core waits for its picture to be taken, so whatever a file's time stamps say, nothing
    // that is far away is waited for.
    constexpr std::chrono::milliseconds longest{200};
    const bool isPlausible = ahead > ahead.zero() && ahead < longest;
    return isPlausible ? Clock::now() + ahead : Clock::now();
}
