#pragma once

#include "platform/linux/workspace/GioHandles.h"

#include <chrono>
#include <functional>

/// Hears from systemd-logind that the machine wakes. It waits for a system bus that is missing
/// and for one that went away, and asks nothing of logind, which may come and go as it likes.
///
/// GIO's bus and not Qt's: Qt shakes hands with a bus on the thread that serves all of them, so a
/// system bus that hangs would hold up the session's too.
class SleepListener {
public:
    /// To be made on the thread that runs GLib's loop, where `didWake` is called too; destroyed
    /// there, or anywhere once that loop has ended.
    explicit SleepListener(std::function<void()> didWake);
    ~SleepListener();
    SleepListener(const SleepListener&) = delete;
    SleepListener& operator=(const SleepListener&) = delete;

private:
    void connect();
    void connectLater();
    void listen();

    static void finishConnecting(GObject* source, GAsyncResult* result, gpointer self);
    static void lose(GDBusConnection* bus, gboolean isRemote, GError* error, gpointer self);
    static gboolean retry(gpointer self);
    static void hear(GDBusConnection* bus,
        const char* sender,
        const char* path,
        const char* interface,
        const char* member,
        GVariant* parameters,
        gpointer self);

    std::function<void()> m_didWake;
    std::chrono::seconds m_patience; // before the next attempt
    GioHandle<GCancellable> m_attempt;
    GioHandle<GSource> m_nextAttempt;
    GioHandle<GDBusConnection> m_bus;
};
