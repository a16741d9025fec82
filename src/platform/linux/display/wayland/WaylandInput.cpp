#include "platform/linux/display/wayland/WaylandInput.h"

#include <linux/input-event-codes.h>
#include <utility>

namespace {

WaylandInput& input(void* self)
{
    return *static_cast<WaylandInput*>(self);
}

QPoint point(wl_fixed_t x, wl_fixed_t y)
{
    return {wl_fixed_to_int(x), wl_fixed_to_int(y)};
}

} // namespace

const wl_seat_listener WaylandInput::seatListener{
    [](void* self, wl_seat* /*seat*/, std::uint32_t capabilities) {
        input(self).setCapabilities(capabilities);
    },
    [](void* /*self*/, wl_seat* /*seat*/, const char* /*name*/) {},
};

const wl_pointer_listener WaylandInput::pointerListener{
    [](void* self,
        wl_pointer* /*pointer*/,
        std::uint32_t serial,
        wl_surface* surface,
        wl_fixed_t x,
        wl_fixed_t y) { input(self).enter(serial, surface, point(x, y)); },
    [](void* self, wl_pointer* /*pointer*/, std::uint32_t /*serial*/, wl_surface* /*surface*/) {
        input(self).m_surface = nullptr;
    },
    [](void* self, wl_pointer* /*pointer*/, std::uint32_t /*time*/, wl_fixed_t x, wl_fixed_t y) {
        input(self).m_location = point(x, y);
    },
    [](void* self,
        wl_pointer* /*pointer*/,
        std::uint32_t /*serial*/,
        std::uint32_t /*time*/,
        std::uint32_t button,
        std::uint32_t state) { input(self).pressOrRelease(button, state); },
    [](void* /*self*/, wl_pointer*, std::uint32_t /*time*/, std::uint32_t /*axis*/, wl_fixed_t) {},
    [](void* /*self*/, wl_pointer* /*pointer: end of a frame of events*/) {},
    [](void* /*self*/, wl_pointer* /*pointer*/, std::uint32_t /*axisSource*/) {},
    [](void* /*self*/, wl_pointer*, std::uint32_t /*time*/, std::uint32_t /*stoppedAxis*/) {},
    [](void* /*self*/, wl_pointer*, std::uint32_t /*axis*/, std::int32_t /*steps*/) {},
    [](void* /*self*/, wl_pointer*, std::uint32_t /*axis*/, std::int32_t /*partsOfSteps*/) {},
};

const wl_touch_listener WaylandInput::touchListener{
    [](void* self,
        wl_touch* /*touch*/,
        std::uint32_t /*serial*/,
        std::uint32_t /*time*/,
        wl_surface* surface,
        std::int32_t /*finger*/,
        wl_fixed_t x,
        wl_fixed_t y) {
        const auto* const window = input(self).m_findWindow(surface);
        if (window && window->receiver())
            window->receiver()->touch(point(x, y));
    },
    [](void* /*self*/, wl_touch*, std::uint32_t, std::uint32_t, std::int32_t /*liftedFinger*/) {},
    [](void*, wl_touch*, std::uint32_t, std::int32_t /*movedFinger*/, wl_fixed_t, wl_fixed_t) {},
    [](void* /*self*/, wl_touch* /*touch: end of a frame of events*/) {},
    [](void* /*self*/, wl_touch* /*touch: the fingers are somebody else's*/) {},
    [](void* /*self*/, wl_touch*, std::int32_t, wl_fixed_t, wl_fixed_t /*shape*/) {},
    [](void* /*self*/, wl_touch*, std::int32_t, wl_fixed_t /*orientation*/) {},
};

WaylandInput::WaylandInput(
    WaylandConnection& connection, WaylandHandle<wl_seat> seat, WindowFinder findWindow)
    : m_findWindow(std::move(findWindow)), m_seat(std::move(seat)), m_cursor(connection)
{
    wl_seat_add_listener(m_seat.get(), &seatListener, this);
}

void WaylandInput::setCapabilities(std::uint32_t capabilities)
{
    const bool hasPointer = (capabilities & WL_SEAT_CAPABILITY_POINTER) != 0;
    const bool hasTouch = (capabilities & WL_SEAT_CAPABILITY_TOUCH) != 0;
    if (!hasPointer) {
        m_pointer.reset();
        m_surface = nullptr;
    } else if (!m_pointer) {
        m_pointer.reset(wl_seat_get_pointer(m_seat.get()));
        wl_pointer_add_listener(m_pointer.get(), &pointerListener, this);
    }
    if (!hasTouch) {
        m_touch.reset();
    } else if (!m_touch) {
        m_touch.reset(wl_seat_get_touch(m_seat.get()));
        wl_touch_add_listener(m_touch.get(), &touchListener, this);
    }
}

void WaylandInput::enter(std::uint32_t serial, const wl_surface* surface, const QPoint& location)
{
    m_surface = surface;
    m_location = location;
    if (const auto* const window = m_findWindow(surface); window && window->output())
        m_cursor.show(*m_pointer, serial, window->output()->integerScale());
}

WindowViews* WaylandInput::viewsUnderPointer() const
{
    const auto* const window = m_surface ? m_findWindow(m_surface) : nullptr;
    return window ? window->receiver() : nullptr;
}

void WaylandInput::pressOrRelease(std::uint32_t button, std::uint32_t state) const
{
    auto* const views = viewsUnderPointer();
    if (!views || button != BTN_LEFT)
        return;
    if (state == WL_POINTER_BUTTON_STATE_PRESSED)
        views->press(m_location);
    else
        views->release(m_location);
}
