#include "platform/linux/workspace/LoginListener.h"

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto shortestPatience = 1s; // a bus that is restarted
constexpr auto longestPatience = 64s; // a system that has none

constexpr auto login = "org.freedesktop.login1";
constexpr auto loginPath = "/org/freedesktop/login1";
constexpr auto managerInterface = "org.freedesktop.login1.Manager";
constexpr auto sessionInterface = "org.freedesktop.login1.Session";
constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties";

LoginListener& listener(gpointer self)
{
    return *static_cast<LoginListener*>(self);
}

} // namespace

LoginListener::LoginListener(Handlers handlers)
    : m_handlers(std::move(handlers)), m_patience(shortestPatience), m_attempt(g_cancellable_new())
{
    connect();
}

LoginListener::~LoginListener()
{
    g_cancellable_cancel(m_attempt.get()); // frees the thread that still waits for an answer
    if (m_loginWatch != 0)
        g_bus_unwatch_name(m_loginWatch);
    if (m_bus)
        g_signal_handlers_disconnect_by_data(m_bus.get(), this);
}

void LoginListener::connect()
{
    const GioHandle<char> address(
        g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
    if (!address)
        return; // an address that names no bus at all, now and later
    // A connection of our own: the process's shared one ends the process when the bus goes.
    g_dbus_connection_new_for_address(address.get(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr,
        m_attempt.get(),
        finishConnecting,
        this);
}

void LoginListener::finishConnecting(GObject* /*source*/, GAsyncResult* result, gpointer self)
{
    auto& waiting = listener(self);
    waiting.m_bus.reset(g_dbus_connection_new_for_address_finish(result, nullptr));
    if (waiting.m_bus && !g_dbus_connection_is_closed(waiting.m_bus.get()))
        waiting.listen();
    else
        waiting.connectLater();
}

void LoginListener::connectLater()
{
    m_nextAttempt.reset(g_timeout_source_new_seconds(static_cast<guint>(m_patience.count())));
    m_patience = std::min(2 * m_patience, longestPatience);
    g_source_set_callback(m_nextAttempt.get(), retry, this, nullptr);
    g_source_attach(m_nextAttempt.get(), g_main_context_get_thread_default());
}

gboolean LoginListener::retry(gpointer self)
{
    listener(self).connect();
    return G_SOURCE_REMOVE;
}

void LoginListener::listen()
{
    m_patience = shortestPatience;
    const auto lose = +[](GDBusConnection*, gboolean, GError*, gpointer self) {
        auto& deaf = listener(self);
        deaf.forgetSession();
        g_bus_unwatch_name(std::exchange(deaf.m_loginWatch, 0));
        deaf.m_bus.reset();
        deaf.connectLater();
    };
    g_signal_connect(m_bus.get(), "closed", G_CALLBACK(lose), this);
    // The bus itself matches the sender's name, whoever owns it at the time.
    g_dbus_connection_signal_subscribe(m_bus.get(),
        login,
        managerInterface,
        "PrepareForSleep",
        loginPath,
        nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE,
        hearSleep,
        this,
        nullptr);
    m_loginWatch = g_bus_watch_name_on_connection(
        m_bus.get(),
        login,
        G_BUS_NAME_WATCHER_FLAGS_NONE,
        [](GDBusConnection*, const char*, const char*, gpointer self) {
            listener(self).askForSession();
        },
        [](GDBusConnection*, const char*, gpointer self) { listener(self).forgetSession(); },
        this,
        nullptr);
}

void LoginListener::hearSleep(GDBusConnection* /*bus*/,
    const char* /*sender*/,
    const char* /*path*/,
    const char* /*interface*/,
    const char* /*member*/,
    GVariant* parameters,
    gpointer self)
{
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(b)")))
        return;
    gboolean fallsAsleep = FALSE;
    g_variant_get(parameters, "(b)", &fallsAsleep);
    if (!fallsAsleep)
        listener(self).m_handlers.didWake();
}

void LoginListener::call(const char* path,
    const char* interface,
    const char* method,
    GVariant* arguments,
    const char* answerType,
    GAsyncReadyCallback take)
{
    constexpr int usualTimeout = -1;
    g_dbus_connection_call(m_bus.get(),
        login,
        path,
        interface,
        method,
        arguments,
        G_VARIANT_TYPE(answerType),
        G_DBUS_CALL_FLAGS_NO_AUTO_START,
        usualTimeout,
        m_attempt.get(),
        take,
        this);
}

/// Ours, or the user's own where this process runs beside it, as services of the user do.
void LoginListener::askForSession()
{
    call(loginPath,
        managerInterface,
        "GetSession",
        g_variant_new("(s)", "auto"),
        "(o)",
        takeSession);
}

void LoginListener::takeSession(GObject* bus, GAsyncResult* result, gpointer self)
{
    const GioHandle<GVariant> answer(
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, nullptr));
    if (!answer || G_DBUS_CONNECTION(bus) != listener(self).m_bus.get())
        return; // there is no session, or no listener any more
    const char* path = nullptr;
    g_variant_get(answer.get(), "(&o)", &path);
    listener(self).followSession(path);
}

void LoginListener::followSession(const char* path)
{
    forgetSession();
    m_session = g_dbus_connection_signal_subscribe(m_bus.get(),
        login,
        propertiesInterface,
        "PropertiesChanged",
        path,
        sessionInterface,
        G_DBUS_SIGNAL_FLAGS_NONE,
        hearSession,
        this,
        nullptr);
    call(path,
        propertiesInterface,
        "Get",
        g_variant_new("(ss)", sessionInterface, "LockedHint"),
        "(v)",
        takeLockedHint);
}

void LoginListener::takeLockedHint(GObject* bus, GAsyncResult* result, gpointer self)
{
    const GioHandle<GVariant> answer(
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, nullptr));
    if (!answer || G_DBUS_CONNECTION(bus) != listener(self).m_bus.get())
        return;
    GVariant* content = nullptr;
    g_variant_get(answer.get(), "(v)", &content);
    const GioHandle<GVariant> hint(content);
    if (g_variant_is_of_type(hint.get(), G_VARIANT_TYPE_BOOLEAN))
        listener(self).setIsLocked(g_variant_get_boolean(hint.get()) != FALSE);
}

void LoginListener::hearSession(GDBusConnection* /*bus*/,
    const char* /*sender*/,
    const char* /*path*/,
    const char* /*interface*/,
    const char* /*member*/,
    GVariant* parameters,
    gpointer self)
{
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sa{sv}as)")))
        return;
    const GioHandle<GVariant> changes(g_variant_get_child_value(parameters, 1));
    gboolean isLocked = FALSE;
    if (g_variant_lookup(changes.get(), "LockedHint", "b", &isLocked))
        listener(self).setIsLocked(isLocked != FALSE);
}

void LoginListener::forgetSession()
{
    if (m_session != 0)
        g_dbus_connection_signal_unsubscribe(m_bus.get(), std::exchange(m_session, 0));
    setIsLocked(false);
}

void LoginListener::setIsLocked(bool isLocked)
{
    if (std::exchange(m_isLocked, isLocked) != isLocked)
        m_handlers.lockChanged(isLocked);
}
