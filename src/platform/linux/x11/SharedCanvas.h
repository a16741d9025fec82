#pragma once

#include "platform/linux/x11/X11Handles.h"

#include <QPoint>
#include <QSize>

#include <xcb/shm.h>

#include <cstddef>
#include <cstdint>
#include <memory>

/// A picture in memory that the X server can read too (MIT-SHM 1.2). Where the server cannot map
/// our memory, a remote one for instance, the picture is only ours and has to be sent.
///
/// 4 bytes a pixel: blue, green, red, unused. Black when new.
class SharedCanvas {
public:
    /// Null when there is no memory for it.
    static std::unique_ptr<SharedCanvas> create(xcb_connection_t* connection, const QSize& size);
    ~SharedCanvas();
    SharedCanvas(const SharedCanvas&) = delete;
    SharedCanvas& operator=(const SharedCanvas&) = delete;

    const QSize& size() const { return m_size; }
    /// Bytes from one row to the next; rows begin at multiples of 64, for the vector units.
    std::size_t stride() const { return m_stride; }
    std::size_t byteCount() const { return m_stride * static_cast<std::size_t>(m_size.height()); }
    std::uint8_t* pixels() const { return m_pixels; }
    const std::uint8_t* pixelAt(const QPoint& point) const;
    /// The server's name of the memory, or none where it could not map it.
    xcb_shm_seg_t segment() const { return m_segment; }

    void fillBlack();

private:
    SharedCanvas(
        xcb_connection_t* connection, const QSize& size, std::size_t stride, std::uint8_t* pixels);
    void attach(int descriptor);

    xcb_connection_t* m_connection;
    QSize m_size;
    std::size_t m_stride;
    std::uint8_t* m_pixels;
    xcb_shm_seg_t m_segment = XCB_NONE;
};
