#include "platform/linux/x11/SharedCanvas.h"

#include <QtGlobal>

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

} // namespace

SharedCanvas::SharedCanvas(xcb_connection_t* connection, const QSize& size)
    : m_connection(connection), m_size(size), m_stride(alignedStride(size.width()))
{
    const int descriptor = memfd_create("tavelor-canvas", MFD_CLOEXEC);
    if (descriptor < 0 || ftruncate(descriptor, static_cast<off_t>(byteCount())) != 0)
        qFatal("No memory for a picture of %d by %d pixels.", size.width(), size.height());
    auto* const pixels =
        mmap(nullptr, byteCount(), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (pixels == MAP_FAILED)
        qFatal("No memory for a picture of %d by %d pixels.", size.width(), size.height());
    m_pixels = static_cast<std::uint8_t*>(pixels);
    attach(descriptor); // closes it
}

SharedCanvas::~SharedCanvas()
{
    if (m_segment != XCB_NONE)
        xcb_shm_detach(m_connection, m_segment);
    munmap(m_pixels, byteCount());
}

void SharedCanvas::attach(int descriptor)
{
    const auto version = own(
        xcb_shm_query_version_reply(m_connection, xcb_shm_query_version(m_connection), nullptr));
    const bool takesDescriptors =
        version && (version->major_version > 1 ||
                       (version->major_version == 1 && version->minor_version >= 2));
    if (!takesDescriptors) {
        close(descriptor);
        return;
    }
    m_segment = xcb_generate_id(m_connection);
    const auto attached =
        xcb_shm_attach_fd_checked(m_connection, m_segment, descriptor, 1); // takes the descriptor
    if (own(xcb_request_check(m_connection, attached)))
        m_segment = XCB_NONE;
}

void SharedCanvas::fillBlack()
{
    std::memset(m_pixels, 0, byteCount());
}
