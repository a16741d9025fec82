#pragma once

#include <QPoint>
#include <QSize>

#include <cstddef>
#include <cstdint>
#include <memory>

/// A picture in memory that the display server can map too. 4 bytes a pixel: blue, green, red,
/// unused. Black when new.
class CanvasMemory {
public:
    /// Null when there is no memory for it.
    static std::unique_ptr<CanvasMemory> create(const QSize& size);
    ~CanvasMemory();
    CanvasMemory(const CanvasMemory&) = delete;
    CanvasMemory& operator=(const CanvasMemory&) = delete;

    const QSize& size() const { return m_size; }
    /// Bytes from one row to the next.
    std::size_t stride() const { return m_stride; }
    /// One row more than the picture has, because a part that does not begin at the left edge is
    /// as many whole rows to Wayland.
    std::size_t byteCount() const;
    std::uint8_t* pixels() const { return m_pixels; }
    std::size_t offsetOf(const QPoint& point) const;
    void fillBlack();

    /// Of the memory; the caller's from now on, once.
    int takeDescriptor();

private:
    CanvasMemory(const QSize& size, int descriptor);

    QSize m_size;
    std::size_t m_stride;
    int m_descriptor;
    std::uint8_t* m_pixels = nullptr;
};
