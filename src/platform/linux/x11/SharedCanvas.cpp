#include "platform/linux/x11/SharedCanvas.h"

#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr std::size_t bytesPerPixel = 4;
constexpr std::size_t alignment = 64;

std::size_t alignedStride(int width)
{
    return (static_cast<std::size_t>(width) * bytesPerPixel + alignment - 1) / alignment *
           alignment;
}

bool takesDescriptors(xcb_connection_t* connection)
{
    if (!hasExtension(connection, xcb_shm_id))
        return false;
    const auto version =
        own(xcb_shm_query_version_reply(connection, xcb_shm_query_version(connection), nullptr));
    return version && (version->major_version > 1 ||
                          (version->major_version == 1 && version->minor_version >= 2));
}

} // namespace

std::unique_ptr<SharedCanvas> SharedCanvas::create(xcb_connection_t* connection, const QSize& size)
{
    const auto stride = alignedStride(size.width());
    const auto byteCount = stride * static_cast<std::size_t>(size.height());
    const int descriptor = memfd_create("tavelor-canvas", MFD_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    // Reserved and not only promised: a picture that does not fit fails here, not while drawing.
    if (posix_fallocate(descriptor, 0, static_cast<off_t>(byteCount)) != 0) {
        close(descriptor);
        return nullptr;
    }
    auto* const pixels =
        mmap(nullptr, byteCount, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (pixels == MAP_FAILED) {
        close(descriptor);
        return nullptr;
    }
    std::unique_ptr<SharedCanvas> canvas(
        new SharedCanvas(connection, size, stride, static_cast<std::uint8_t*>(pixels)));
    canvas->attach(descriptor); // closes it
    return canvas;
}

SharedCanvas::SharedCanvas(
    xcb_connection_t* connection, const QSize& size, std::size_t stride, std::uint8_t* pixels)
    : m_connection(connection), m_size(size), m_stride(stride), m_pixels(pixels)
{
}

SharedCanvas::~SharedCanvas()
{
    if (m_segment != XCB_NONE)
        xcb_shm_detach(m_connection, m_segment);
    munmap(m_pixels, byteCount());
}

void SharedCanvas::attach(int descriptor)
{
    if (!takesDescriptors(m_connection)) {
        close(descriptor);
        return;
    }
    m_segment = xcb_generate_id(m_connection);
    const auto attached =
        xcb_shm_attach_fd_checked(m_connection, m_segment, descriptor, 1); // takes the descriptor
    if (own(xcb_request_check(m_connection, attached)))
        m_segment = XCB_NONE;
}

const std::uint8_t* SharedCanvas::pixelAt(const QPoint& point) const
{
    return m_pixels + static_cast<std::size_t>(point.y()) * m_stride +
           static_cast<std::size_t>(point.x()) * bytesPerPixel;
}

void SharedCanvas::fillBlack()
{
    std::memset(m_pixels, 0, byteCount());
}
