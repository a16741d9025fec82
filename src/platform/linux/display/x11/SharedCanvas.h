#pragma once

#include "platform/linux/display/CanvasMemory.h"
#include "platform/linux/display/x11/X11Handles.h"

#include <xcb/shm.h>

#include <memory>

/// A picture that the X server can read too (MIT-SHM 1.2). Where the server cannot map our memory,
/// a remote one for instance, the picture is only ours and has to be sent.
class SharedCanvas {
public:
    /// What the server may do with the memory.
    enum class Access { Read, Write };
    /// Null when there is no memory for it.
    static std::unique_ptr<SharedCanvas> create(
        xcb_connection_t* connection, const QSize& size, Access access = Access::Read);
    ~SharedCanvas();
    SharedCanvas(const SharedCanvas&) = delete;
    SharedCanvas& operator=(const SharedCanvas&) = delete;

    CanvasMemory& memory() const { return *m_memory; }
    /// The server's name of the memory, or none where it could not map it.
    xcb_shm_seg_t segment() const { return m_segment; }

private:
    SharedCanvas(xcb_connection_t* connection, std::unique_ptr<CanvasMemory> memory);
    void attach(Access access);

    xcb_connection_t* m_connection;
    std::unique_ptr<CanvasMemory> m_memory;
    xcb_shm_seg_t m_segment = XCB_NONE;
};
