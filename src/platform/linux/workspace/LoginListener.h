#pragma once

#include "platform/linux/workspace/GioHandles.h"

#include <chrono>
#include <functional>

/// Hears from systemd-logind that the machine wakes, and whether the session is locked
/// (https://www.freedesktop.org/software/systemd/man/org.freedesktop.login1.html). It waits for a
/// system bus that is missing and for one that went away; logind may come and go as it likes.
///
/// GIO's bus and not Qt's: Qt shakes hands with a bus on the thread that serves all of them, so a
/// system bus that hangs would hold up the session's too.
class LoginListener {
public:
    struct Handlers {
        std::function<void()> didWake;
        /// A session is unlocked until logind says otherwise, and when nobody can say it any more.
        std::function<void(bool isLocked)> lockChanged;
    };
    /// To be made on the thread that runs GLib's loop, where the handlers are called too; destroyed
    /// there, or anywhere once that loop has ended.
    explicit LoginListener(Handlers handlers);
    ~LoginListener();
    LoginListener(const LoginListener&) = delete;
    LoginListener& operator=(const LoginListener&) = delete;

private:
    void connect();
    void connectLater();
    void listen();
    /// Asks logind. Nobody waits for the answer.
    void call(const char* path,
        const char* interface,
        const char* method,
        GVariant* arguments,
        const char* answerType,
        GAsyncReadyCallback take);
    void askForSession();
    void followSession(const char* path);
    void forgetSession();
    void setIsLocked(bool isLocked);

    static void finishConnecting(GObject* source, GAsyncResult* result, gpointer self);
    static void takeSession(GObject* source, GAsyncResult* result, gpointer self);
    static void takeLockedHint(GObject* source, GAsyncResult* result, gpointer self);
    static gboolean retry(gpointer self);
    /// GDBusSignalCallback
    static void hearSleep(GDBusConnection* bus,
        const char* sender,
        const char* path,
        const char* interface,
        const char* member,
        GVariant* parameters,
        gpointer self);
    static void hearSession(GDBusConnection* bus,
        const char* sender,
        const char* path,
        const char* interface,
        const char* member,
        GVariant* parameters,
        gpointer self);

    Handlers m_handlers;
    std::chrono::seconds m_patience; // before the next attempt
    GioHandle<GCancellable> m_attempt;
    GioHandle<GSource> m_nextAttempt;
    GioHandle<GDBusConnection> m_bus;
    guint m_loginWatch = 0; // while there is a bus
    guint m_session = 0;    // the subscription, while one is known
    bool m_isLocked = false;
};
