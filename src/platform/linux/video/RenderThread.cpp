#include "platform/linux/video/RenderThread.h"

#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

RenderThread::RenderThread(
    mpv_handle& core, PictureStatistics& statistics, std::function<void(bool isSeen)> tellSeen)
    : m_wakeDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_loop(std::make_unique<PictureLoop>(
          core, statistics, [this] { wake(); }, std::move(tellSeen))),
      m_thread([this] { run(); })
{
}

RenderThread::~RenderThread()
{
    order([](Orders& orders) { orders.quit = true; });
    m_thread.join();
    close(m_wakeDescriptor);
}

const char* RenderThread::setPresenter(PresenterFactory make)
{
    std::future<const char*> answer;
    order([&](Orders& orders) {
        orders.presenter = std::move(make);
        answer = orders.presenterAnswer.get_future();
    });
    return answer.get();
}

void RenderThread::setTarget(const void* owner, const FrameTarget& target)
{
    if (!target.surface) {
        removeTarget(owner);
        return;
    }
    order([&](Orders& orders) {
        m_targets[owner] = target;
        orders.targets.emplace();
    });
}

void RenderThread::removeTarget(const void* owner)
{
    order([&](Orders& orders) {
        if (m_targets.erase(owner) > 0)
            orders.targets.emplace();
    });
}

void RenderThread::forgetPicture()
{
    order([](Orders& orders) { orders.forgetPicture = true; });
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

void RenderThread::run()
{
    pthread_setname_np(pthread_self(), "pictures");
    for (;;) {
        m_loop->wait(m_wakeDescriptor);
        std::uint64_t wakes = 0;
        [[maybe_unused]] const auto taken = read(m_wakeDescriptor, &wakes, sizeof wakes);
        auto orders = takeOrders();
        if (orders.quit)
            break;
        obey(orders);
        m_loop->run();
    }
    m_loop.reset();
}

RenderThread::Orders RenderThread::takeOrders()
{
    const std::lock_guard lock(m_mutex);
    // A new presenter knows none of the targets yet.
    if (m_orders.targets || m_orders.presenter) {
        auto& targets = m_orders.targets.emplace();
        for (const auto& [owner, target] : m_targets)
            targets.push_back(target);
    }
    return std::exchange(m_orders, {});
}

void RenderThread::obey(Orders& orders)
{
    if (orders.presenter)
        orders.presenterAnswer.set_value(m_loop->changePresenter(*orders.presenter));
    if (orders.targets)
        m_loop->setTargets(*orders.targets);
    if (orders.forgetPicture)
        m_loop->forgetPicture();
    if (orders.clear)
        m_loop->clear();
    if (orders.clearIfNothingWasShown)
        m_loop->clearIfNothingWasShown();
    if (orders.presentAgain)
        m_loop->presentAgain();
}
