#include "platform/linux/workspace/SleepListener.h"

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto shortestPatience = 1s; // a bus that is restarted
constexpr auto longestPatience = 64s; // a system that has none

SleepListener& listener(gpointer self)
{
    return *static_cast<SleepListener*>(self);
}

} // namespace

SleepListener::SleepListener(std::function<void()> didWake)
    : m_didWake(std::move(didWake)), m_patience(shortestPatience), m_attempt(g_cancellable_new())
{
    connect();
}

SleepListener::~SleepListener()
{
    g_cancellable_cancel(m_attempt.get()); // frees the thread that still waits for an answer
    if (m_bus)
        g_signal_handlers_disconnect_by_data(m_bus.get(), this);
}

void SleepListener::connect()
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

void SleepListener::finishConnecting(GObject* /*source*/, GAsyncResult* result, gpointer self)
{
    auto& waiting = listener(self);
    waiting.m_bus.reset(g_dbus_connection_new_for_address_finish(result, nullptr));
    if (waiting.m_bus && !g_dbus_connection_is_closed(waiting.m_bus.get()))
        waiting.listen();
    else
        waiting.connectLater();
}

void SleepListener::connectLater()
{
    m_nextAttempt.reset(g_timeout_source_new_seconds(static_cast<guint>(m_patience.count())));
    m_patience = std::min(2 * m_patience, longestPatience);
    g_source_set_callback(m_nextAttempt.get(), retry, this, nullptr);
    g_source_attach(m_nextAttempt.get(), g_main_context_get_thread_default());
}

gboolean SleepListener::retry(gpointer self)
{
    listener(self).connect();
    return G_SOURCE_REMOVE;
}

void SleepListener::listen()
{
    m_patience = shortestPatience;
    g_signal_connect(m_bus.get(), "closed", G_CALLBACK(lose), this);
    // The bus itself matches the sender's name, whoever owns it at the time.
    g_dbus_connection_signal_subscribe(m_bus.get(),
        "org.freedesktop.login1",
        "org.freedesktop.login1.Manager",
        "PrepareForSleep",
        "/org/freedesktop/login1",
        nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE,
        hear,
        this,
        nullptr);
}

void SleepListener::lose(
    GDBusConnection* /*bus*/, gboolean /*isRemote*/, GError* /*error*/, gpointer self)
{
    auto& deaf = listener(self);
    deaf.m_bus.reset();
    deaf.connectLater();
}

void SleepListener::hear(GDBusConnection* /*bus*/,
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
        listener(self).m_didWake();
}
