#include "platform/linux/video/RenderThread.h"

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <future>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace {

struct RenderContextDeleter {
    void operator()(mpv_render_context* context) const { mpv_render_context_free(context); }
};
using RenderContext = std::unique_ptr<mpv_render_context, RenderContextDeleter>;

RenderContext createContext(mpv_handle* core, const char* api)
{
    mpv_render_param parameters[] = {
        {MPV_RENDER_PARAM_API_TYPE, const_cast<char*>(api)}, // read only, says render.h
        {MPV_RENDER_PARAM_INVALID, nullptr},
    };
    mpv_render_context* context = nullptr;
    if (const int error = mpv_render_context_create(&context, core, parameters); error < 0)
        qFatal("libmpv cannot draw: %s", mpv_error_string(error));
    return RenderContext(context);
}

mpv_render_frame_info nextPicture(mpv_render_context& context)
{
    mpv_render_frame_info information{};
    mpv_render_context_get_info(&context, {MPV_RENDER_PARAM_NEXT_FRAME_INFO, &information});
    return information;
}

/// Takes a picture that nobody will see, or libmpv would wait for it.
void skipPicture(mpv_render_context& context)
{
    int yes = 1;
    int no = 0;
    mpv_render_param parameters[] = {
        {MPV_RENDER_PARAM_SKIP_RENDERING, &yes},
        {MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &no},
        {MPV_RENDER_PARAM_INVALID, nullptr},
    };
    mpv_render_context_render(&context, parameters);
}

} // namespace

RenderThread::RenderThread(mpv_handle* core, PresenterFactory makePresenter)
    : m_wakeDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), m_core(core)
{
    std::promise<void> started;
    const auto isStarted = started.get_future();
    m_thread = std::thread(
        [this, make = std::move(makePresenter), started = std::move(started)]() mutable {
            pthread_setname_np(pthread_self(), "pictures");
            const auto presenter = make();
            const auto context = createContext(m_core, presenter->renderApi());
            mpv_render_context_set_update_callback(
                context.get(), [](void* self) { static_cast<RenderThread*>(self)->wake(); }, this);
            started.set_value();
            loop(*context, *presenter);
            mpv_render_context_set_update_callback(context.get(), nullptr, nullptr);
        });
    isStarted.wait();
}

RenderThread::~RenderThread()
{
    order([](Orders& orders) { orders.quit = true; });
    m_thread.join();
    close(m_wakeDescriptor);
}

void RenderThread::setSurface(const void* owner, const Surface& surface)
{
    order([&](Orders& orders) {
        m_surfaces[owner] = surface;
        orders.surfacesChanged = true;
    });
}

void RenderThread::removeSurface(const void* owner)
{
    order([&](Orders& orders) {
        if (m_surfaces.erase(owner) > 0)
            orders.surfacesChanged = true;
    });
}

void RenderThread::presentAgain()
{
    order([](Orders& orders) { orders.presentAgain = true; });
}

void RenderThread::clear()
{
    order([](Orders& orders) { orders.clear = true; });
}

void RenderThread::clearIfNothingWasShown()
{
    order([](Orders& orders) { orders.clearIfNothingWasShown = true; });
}

void RenderThread::order(const std::function<void(Orders&)>& change)
{
    {
        const std::lock_guard lock(m_mutex);
        change(m_orders);
    }
    wake();
}

void RenderThread::wake() const
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(m_wakeDescriptor, &one, sizeof one);
}

void RenderThread::loop(mpv_render_context& context, FramePresenter& presenter)
{
    // Before there is anything, the windows keep showing what was on the screen before them.
    enum class Content { Nothing, Picture, Black } content = Content::Nothing;
    bool isOffered = false; // the core has a picture that has not been taken
    bool isStale = false;   // the canvases hold something else than `content`
    Due due;                // when the windows get what the canvases hold; none when they have it
    for (;;) {
        presenter.dispatch();
        const bool canDraw = presenter.hasSurfaces() && presenter.isReady();
        const bool hasWork = !due && canDraw && (isOffered || isStale);
        waitForWork(presenter, hasWork ? Clock::now() : due);
        presenter.dispatch();
        const auto [orders, surfaces] = takeOrders();
        if (orders.quit)
            return;

        if (orders.surfacesChanged) {
            presenter.setSurfaces(surfaces);
            isStale = content != Content::Nothing;
            due.reset();
        }
        if (orders.clear || (orders.clearIfNothingWasShown && content == Content::Nothing)) {
            content = Content::Black;
            isStale = true;
            due.reset();
        }
        const bool isDue = due && Clock::now() >= *due;
        const bool isShownAgain = orders.presentAgain && !isStale && content != Content::Nothing;
        if (isDue || isShownAgain) {
            presenter.present();
            due.reset();
        }

        isOffered = (mpv_render_context_update(&context) & MPV_RENDER_UPDATE_FRAME) != 0;
        if (isOffered && !presenter.hasSurfaces()) {
            count(nextPicture(context));
            skipPicture(context);
            content = Content::Picture;
            isOffered = false;
        }
        // A picture comes ahead of its time; the one before it is shown first.
        if (due || !presenter.hasSurfaces() || !presenter.isReady() || !(isOffered || isStale))
            continue;
        due = Clock::now();
        if (isOffered) {
            const auto picture = nextPicture(context);
            count(picture); // before the core goes on with the next one
            due = timeOf(picture);
            content = Content::Picture;
        }
        if (content == Content::Picture)
            presenter.draw(context);
        else
            presenter.clear();
        isOffered = isStale = false;
    }
}

void RenderThread::count(const mpv_render_frame_info& picture)
{
    // The core also offers its last picture again.
    constexpr std::uint64_t old = MPV_RENDER_FRAME_INFO_REDRAW | MPV_RENDER_FRAME_INFO_REPEAT;
    if ((picture.flags & MPV_RENDER_FRAME_INFO_PRESENT) != 0 && (picture.flags & old) == 0)
        ++m_pictureCount;
}

RenderThread::Due RenderThread::timeOf(const mpv_render_frame_info& picture) const
{
    // Nanoseconds since libmpv 0.37, in spite of what render.h says.
    const bool isNanoseconds = mpv_client_api_version() >= MPV_MAKE_VERSION(2, 2);
    const auto target = isNanoseconds ? picture.target_time / 1000 : picture.target_time;
    const auto ahead = std::chrono::microseconds(target - mpv_get_time_us(m_core));
    // The core waits for its picture to be taken, so whatever a file's time stamps say, nothing
    // that is far away is waited for.
    constexpr std::chrono::milliseconds longest{200};
    const bool isPlausible = ahead > ahead.zero() && ahead < longest;
    return isPlausible ? Clock::now() + ahead : Clock::now();
}

void RenderThread::waitForWork(const FramePresenter& presenter, const Due& due) const
{
    std::array descriptors{
        pollfd{m_wakeDescriptor, POLLIN, 0},
        pollfd{presenter.descriptor(), POLLIN, 0},
    };
    timespec timeout{};
    if (due) {
        const auto left = std::max(*due - Clock::now(), Clock::duration::zero());
        timeout.tv_nsec = std::chrono::nanoseconds(left).count();
    }
    ppoll(descriptors.data(), descriptors.size(), due ? &timeout : nullptr, nullptr);
    std::uint64_t count = 0;
    [[maybe_unused]] const auto taken = read(m_wakeDescriptor, &count, sizeof count);
}

std::pair<RenderThread::Orders, std::vector<Surface>> RenderThread::takeOrders()
{
    const std::lock_guard lock(m_mutex);
    std::vector<Surface> surfaces;
    if (m_orders.surfacesChanged) {
        for (const auto& [owner, surface] : m_surfaces)
            surfaces.push_back(surface);
    }
    return {std::exchange(m_orders, {}), std::move(surfaces)};
}
