#pragma once

#include "platform/linux/workspace/GioHandles.h"

#include <functional>
#include <thread>

/// A thread whose event loop is GLib's. GIO calls back there whatever loop Qt runs on, and those
/// of its calls that wait for another process do not hold up the main thread.
class GioThread {
public:
    GioThread();
    /// Returns when the thread has ended. What has not begun by then is dropped.
    ~GioThread();
    GioThread(const GioThread&) = delete;
    GioThread& operator=(const GioThread&) = delete;

    /// Runs tasks there, one after the other. Any thread may ask.
    void post(std::function<void()> task);

private:
    GioHandle<GMainContext> m_context;
    GioHandle<GMainLoop> m_loop;
    std::thread m_thread;
};
