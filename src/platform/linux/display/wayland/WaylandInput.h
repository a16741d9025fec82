#pragma once

#include "platform/linux/display/wayland/WaylandConnection.h"
#include "platform/linux/display/wayland/WaylandCursor.h"
#include "platform/linux/display/wayland/WaylandWindow.h"

#include <QPoint>

#include <functional>

/// A seat's pointer and touch screen, for our windows.
class WaylandInput {
public:
    /// The window with that surface, or null.
    using WindowFinder = std::function<WaylandWindow*(const wl_surface*)>;

    WaylandInput(
        WaylandConnection& connection, WaylandHandle<wl_seat> seat, WindowFinder findWindow);
    WaylandInput(const WaylandInput&) = delete;
    WaylandInput& operator=(const WaylandInput&) = delete;

private:
    static const wl_seat_listener seatListener;
    static const wl_pointer_listener pointerListener;
    static const wl_touch_listener touchListener;

    void setCapabilities(std::uint32_t capabilities);
    void enter(std::uint32_t serial, const wl_surface* surface, const QPoint& location);
    void pressOrRelease(std::uint32_t button, std::uint32_t state) const;
    WindowViews* viewsUnderPointer() const;

    WindowFinder m_findWindow;
    WaylandHandle<wl_seat> m_seat;
    WaylandCursor m_cursor;
    WaylandHandle<wl_pointer> m_pointer;
    WaylandHandle<wl_touch> m_touch;
    const wl_surface* m_surface = nullptr; // under the pointer; to compare with
    QPoint m_location;                     // there, logical
};
