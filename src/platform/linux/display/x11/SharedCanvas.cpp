#include "platform/linux/display/x11/SharedCanvas.h"

#include <utility>

namespace {

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

std::unique_ptr<SharedCanvas> SharedCanvas::create(
    xcb_connection_t* connection, const QSize& size, Access access)
{
    auto memory = CanvasMemory::create(size);
    if (!memory)
        return nullptr;
    std::unique_ptr<SharedCanvas> canvas(new SharedCanvas(connection, std::move(memory)));
    canvas->attach(access);
    return canvas;
}

SharedCanvas::SharedCanvas(xcb_connection_t* connection, std::unique_ptr<CanvasMemory> memory)
    : m_connection(connection), m_memory(std::move(memory))
{
}

SharedCanvas::~SharedCanvas()
{
    if (m_segment != XCB_NONE)
        xcb_shm_detach(m_connection, m_segment);
}

void SharedCanvas::attach(Access access)
{
    if (!takesDescriptors(m_connection))
        return;
    m_segment = xcb_generate_id(m_connection);
    // xcb closes the descriptor when it has sent it.
    const std::uint8_t isReadOnly = access == Access::Read ? 1 : 0;
    const auto attached =
        xcb_shm_attach_fd_checked(m_connection, m_segment, m_memory->takeDescriptor(), isReadOnly);
    if (own(xcb_request_check(m_connection, attached)))
        m_segment = XCB_NONE;
}
