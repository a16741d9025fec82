#include "platform/linux/display/CanvasMemory.h"

#include "platform/linux/video/CpuDrawing.h"

#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace {

/// More than any desktop has, and less than the 2 GiB where Wayland's pools end.
constexpr std::size_t mostBytes = 1U << 30U;

} // namespace

std::unique_ptr<CanvasMemory> CanvasMemory::create(const QSize& size)
{
    std::unique_ptr<CanvasMemory> memory(
        new CanvasMemory(size, memfd_create("tavelor-canvas", MFD_CLOEXEC)));
    const auto byteCount = memory->byteCount();
    // Reserved and not only promised: a picture that does not fit fails here, not while drawing.
    if (memory->m_descriptor < 0 || byteCount > mostBytes ||
        posix_fallocate(memory->m_descriptor, 0, static_cast<off_t>(byteCount)) != 0)
        return nullptr;
    auto* const pixels =
        mmap(nullptr, byteCount, PROT_READ | PROT_WRITE, MAP_SHARED, memory->m_descriptor, 0);
    if (pixels == MAP_FAILED)
        return nullptr;
    memory->m_pixels = static_cast<std::uint8_t*>(pixels);
    return memory;
}

CanvasMemory::CanvasMemory(const QSize& size, int descriptor)
    : m_size(size), m_stride(CpuDrawing::stride(size.width())), m_descriptor(descriptor)
{
}

CanvasMemory::~CanvasMemory()
{
    if (m_pixels)
        munmap(m_pixels, byteCount());
    if (m_descriptor >= 0)
        close(m_descriptor);
}

std::size_t CanvasMemory::byteCount() const
{
    return m_stride * (static_cast<std::size_t>(m_size.height()) + 1);
}

std::size_t CanvasMemory::offsetOf(const QPoint& point) const
{
    return static_cast<std::size_t>(point.y()) * m_stride +
           static_cast<std::size_t>(point.x()) * CpuDrawing::bytesPerPixel;
}

void CanvasMemory::fillBlack()
{
    std::memset(m_pixels, 0, byteCount());
}

int CanvasMemory::takeDescriptor()
{
    return std::exchange(m_descriptor, -1);
}
