#include "platform/linux/display/wayland/WaylandCpuPresenter.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

#include <algorithm>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

/// A part of a slot's picture that one target shows.
struct SlotBuffer {
    WaylandHandle<wl_buffer> proxy;
    bool isBusy = false; // the compositor may still read it
};

class WaylandCpuPresenter::Slot {
public:
    /// Null when there is no memory.
    static std::unique_ptr<Slot> create(wl_shm& shm, const QSize& size)
    {
        auto memory = CanvasMemory::create(size);
        if (!memory)
            return nullptr;
        // libwayland gives up the connection when it cannot make a copy of the descriptor.
        const int descriptor = memory->takeDescriptor();
        const int copy = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
        if (copy >= 0)
            close(copy);
        auto slot = copy < 0 ? nullptr : std::make_unique<Slot>(shm, std::move(memory), descriptor);
        close(descriptor);
        return slot;
    }

    /// The descriptor stays the caller's.
    Slot(wl_shm& shm, std::unique_ptr<CanvasMemory> memory, int descriptor)
        : m_memory(std::move(memory)),
          m_pool(wl_shm_create_pool(&shm, descriptor, static_cast<int>(m_memory->byteCount())))
    {
    }

    CanvasMemory& memory() { return *m_memory; }

    bool isFree() const
    {
        return std::ranges::none_of(
            m_buffers, [](const auto& entry) { return entry.second->isBusy; });
    }

    /// `part` is in the picture. `owner` is not looked into.
    SlotBuffer& buffer(const void* owner, const QRect& part)
    {
        auto& buffer = m_buffers[owner];
        if (buffer)
            return *buffer;
        buffer = std::make_unique<SlotBuffer>();
        buffer->proxy.reset(wl_shm_pool_create_buffer(m_pool.get(),
            static_cast<int>(m_memory->offsetOf(part.topLeft())),
            part.width(),
            part.height(),
            static_cast<int>(m_memory->stride()),
            WL_SHM_FORMAT_XRGB8888));
        static constexpr wl_buffer_listener listener{
            [](void* self, wl_buffer* /*proxy*/) {
                static_cast<SlotBuffer*>(self)->isBusy = false;
            },
        };
        wl_buffer_add_listener(buffer->proxy.get(), &listener, buffer.get());
        return *buffer;
    }

    void forget(const void* owner) { m_buffers.erase(owner); }

private:
    std::unique_ptr<CanvasMemory> m_memory;
    WaylandHandle<wl_shm_pool> m_pool;
    std::map<const void*, std::unique_ptr<SlotBuffer>> m_buffers;
};

class WaylandCpuPresenter::Canvas {
public:
    Canvas(wl_shm& shm, const QSize& size) : m_shm(shm), m_size(size) {}

    const QSize& size() const { return m_size; }
    Generation generation() const { return m_generation; }
    Slot* latest() const { return m_latest; }

    /// Where the next picture may be drawn, if `canDraw()`; null when there is no memory.
    Slot* freeSlot()
    {
        const auto free =
            std::ranges::find_if(m_slots, [](const auto& slot) { return slot->isFree(); });
        if (free != m_slots.end())
            return free->get();
        auto slot = m_slots.size() < mostSlots() ? Slot::create(m_shm, m_size) : nullptr;
        return slot ? m_slots.emplace_back(std::move(slot)).get() : nullptr;
    }
    bool canDraw() const
    {
        return m_slots.size() < mostSlots() ||
               std::ranges::any_of(m_slots, [](const auto& slot) { return slot->isFree(); });
    }

    void setLatest(Slot& slot, Generation generation)
    {
        m_latest = &slot;
        m_generation = generation;
    }
    /// The picture before stands for this one, because there was no memory.
    void passOver(Generation generation) { m_generation = generation; }

    void addTarget() { ++m_targetCount; }
    void removeTarget(const void* owner)
    {
        --m_targetCount;
        for (const auto& slot : m_slots)
            slot->forget(owner);
    }
    bool isUsed() const { return m_targetCount > 0; }

private:
    /// One is drawn into; each target may hold the one that it shows and the next.
    std::size_t mostSlots() const { return 1 + 2 * m_targetCount; }

    wl_shm& m_shm;
    QSize m_size;
    std::vector<std::unique_ptr<Slot>> m_slots;
    Slot* m_latest = nullptr;
    Generation m_generation = 0; // of the latest
    std::size_t m_targetCount = 0;
};

/// One surface and the part of a canvas that it shows.
class WaylandCpuPresenter::Target {
public:
    Target(const FrameTarget& target, Canvas& canvas, wl_event_queue* queue)
        : m_target(target),
          m_surface(std::static_pointer_cast<WaylandSurface>(target.surface)),
          m_canvas(canvas),
          m_part(target.visiblePixels().translated(-target.pixelRectangle().topLeft()))
    {
        m_canvas.addTarget();
        m_surface->withSurface(
            [&](wl_surface* surface) { m_wrapper = wrapForQueue(surface, queue); });
    }
    ~Target() { m_canvas.removeTarget(this); }
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

    const FrameTarget& frameTarget() const { return m_target; }
    Canvas& canvas() const { return m_canvas; }
    Generation shown() const { return m_shown; }
    bool isFollowing() const { return !m_frameCallback; }

    void show()
    {
        m_shown = m_canvas.generation();
        if (!m_canvas.latest())
            return;
        static constexpr wl_callback_listener frameListener{
            [](void* self, wl_callback* /*callback*/, std::uint32_t /*time*/) {
                auto& target = *static_cast<Target*>(self);
                target.m_frameCallback.reset();
                target.m_surface->setIsFollowing(true);
            },
        };
        m_surface->withSurface([this](wl_surface* surface) {
            auto& buffer = m_canvas.latest()->buffer(this, m_part);
            wl_surface_attach(surface, buffer.proxy.get(), 0, 0);
            wl_surface_damage_buffer(surface, 0, 0, m_part.width(), m_part.height());
            m_frameCallback.reset(wl_surface_frame(m_wrapper.get()));
            wl_callback_add_listener(m_frameCallback.get(), &frameListener, this);
            wl_surface_commit(surface);
            buffer.isBusy = true;
            m_surface->setIsFollowing(false);
        });
    }

private:
    FrameTarget m_target;
    std::shared_ptr<WaylandSurface> m_surface;
    Canvas& m_canvas;
    QRect m_part; // in the canvas; views begin at the window's upper left or outside
    WaylandWrapper<wl_surface> m_wrapper;       // so that callbacks come to the render thread
    WaylandHandle<wl_callback> m_frameCallback; // until the compositor wants the next picture
    Generation m_shown = 0;
};

WaylandCpuPresenter::WaylandCpuPresenter(wl_display& display, wl_shm& shm)
    : m_display(display),
      m_queue(wl_display_create_queue(&display)),
      m_shm(wrapForQueue(&shm, m_queue.get()))
{
}

WaylandCpuPresenter::~WaylandCpuPresenter()
{
    m_targets.clear(); // before the canvases
}

int WaylandCpuPresenter::descriptor() const
{
    // A broken connection's descriptor would be readable for ever; poll skips negative ones.
    return wl_display_get_error(&m_display) != 0 ? -1 : wl_display_get_fd(&m_display);
}

void WaylandCpuPresenter::beginWait()
{
    while (wl_display_prepare_read_queue(&m_display, m_queue.get()) != 0) {
        if (wl_display_dispatch_queue_pending(&m_display, m_queue.get()) < 0)
            return;
    }
    m_isReading = true;
    catchUp();
    wl_display_flush(&m_display);
}

void WaylandCpuPresenter::endWait(bool isReadable)
{
    if (!std::exchange(m_isReading, false))
        return;
    if (isReadable) {
        wl_display_read_events(&m_display);
        wakeMainThread();
    } else {
        wl_display_cancel_read(&m_display);
    }
    wl_display_dispatch_queue_pending(&m_display, m_queue.get());
    catchUp();
}

/// Where events of its own were among those that have just been read: it may sleep already, and the
/// descriptor does not tell of them any more.
void WaylandCpuPresenter::wakeMainThread()
{
    if (wl_display_prepare_read(&m_display) == 0)
        wl_display_cancel_read(&m_display);
    else if (auto* const dispatcher =
                 QAbstractEventDispatcher::instance(QCoreApplication::instance()->thread()))
        dispatcher->wakeUp();
}

void WaylandCpuPresenter::setTargets(const std::vector<FrameTarget>& targets)
{
    // What has not changed goes on as it is, so that its callback is still heard.
    auto former = std::exchange(m_targets, {});
    for (const auto& target : targets) {
        if (target.visiblePixels().isEmpty())
            continue;
        const auto same = std::ranges::find_if(former,
            [&](const auto& candidate) { return candidate && candidate->frameTarget() == target; });
        if (same != former.end()) {
            m_targets.push_back(std::move(*same));
            continue;
        }
        const auto size = target.pixelRectangle().size();
        auto canvas = std::ranges::find_if(
            m_canvases, [&](const auto& candidate) { return candidate->size() == size; });
        if (canvas == m_canvases.end())
            canvas = m_canvases.insert(canvas, std::make_unique<Canvas>(*m_shm, size));
        m_targets.push_back(std::make_unique<Target>(target, **canvas, m_queue.get()));
    }
    former.clear();
    std::erase_if(m_canvases, [](const auto& canvas) { return !canvas->isUsed(); });
}

bool WaylandCpuPresenter::isReady() const
{
    return std::ranges::any_of(m_targets,
        [](const auto& target) { return target->isFollowing() && target->canvas().canDraw(); });
}

bool WaylandCpuPresenter::isBehind() const
{
    return std::ranges::any_of(m_targets, [this](const auto& target) {
        return target->isFollowing() && target->canvas().generation() < m_presented;
    });
}

template <typename Paint>
bool WaylandCpuPresenter::drawCanvases(const Paint& paint)
{
    ++m_drawn;
    bool hasDrawn = false;
    for (const auto& canvas : m_canvases) {
        const bool isWanted = std::ranges::any_of(m_targets, [&](const auto& target) {
            return target->isFollowing() && &target->canvas() == canvas.get();
        });
        if (!isWanted || !canvas->canDraw())
            continue;
        if (auto* const slot = canvas->freeSlot()) {
            paint(slot->memory());
            canvas->setLatest(*slot, m_drawn);
            hasDrawn = true;
        } else {
            canvas->passOver(m_drawn);
        }
    }
    return hasDrawn;
}

bool WaylandCpuPresenter::draw(mpv_render_context& context)
{
    return drawCanvases([&context](CanvasMemory& memory) {
        CpuDrawing::draw(context, memory.size(), memory.stride(), memory.pixels());
    });
}

void WaylandCpuPresenter::clear()
{
    drawCanvases([](CanvasMemory& memory) { memory.fillBlack(); });
}

void WaylandCpuPresenter::present()
{
    m_presented = m_drawn;
    catchUp();
    wl_display_flush(&m_display);
}

/// Targets that did not follow when a picture was presented get it now.
void WaylandCpuPresenter::catchUp()
{
    for (const auto& target : m_targets) {
        const auto generation = target->canvas().generation();
        if (target->isFollowing() && target->shown() < generation && generation <= m_presented)
            target->show();
    }
}
