#include "platform/linux/workspace/DesktopEntry.h"

#include "platform/linux/workspace/GioHandles.h"

#include <gio/gdesktopappinfo.h>

#include <unistd.h>

void DesktopEntry::launch(const QString& identifier)
{
    const auto name = identifier.toUtf8() + ".desktop";
    const GioHandle<GDesktopAppInfo> entry(g_desktop_app_info_new(name.constData()));
    if (!entry)
        return;

    // GIO asks for this connection too, and it would end this process if the bus ended meanwhile.
    const GioHandle<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    if (bus)
        g_dbus_connection_set_exit_on_close(bus.get(), FALSE);

    // GIO reaps what it starts. A session of its own, so that Ctrl+C in our terminal is ours.
    constexpr auto flags = static_cast<GSpawnFlags>(
        G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);
    const auto detach = [](gpointer) { setsid(); };
    g_desktop_app_info_launch_uris_as_manager(
        entry.get(), nullptr, nullptr, flags, detach, nullptr, nullptr, nullptr, nullptr);
}
