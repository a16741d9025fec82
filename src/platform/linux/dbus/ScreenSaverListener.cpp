#include "platform/linux/dbus/ScreenSaverListener.h"

#include <QDBusConnection>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

/// Each is the name of a service and of its interface.
QStringList screenSavers()
{
    return {u"org.freedesktop.ScreenSaver"_s,
        u"org.gnome.ScreenSaver"_s,
        u"org.mate.ScreenSaver"_s,
        u"org.xfce.ScreenSaver"_s,
        u"org.cinnamon.ScreenSaver"_s};
}

} // namespace

ScreenSaverListener::ScreenSaverListener()
{
    auto bus = QDBusConnection::sessionBus();
    m_watcher.setConnection(bus);
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    for (const auto& name : screenSavers()) {
        m_watcher.addWatchedService(name);
        // Only from who owns the name. The path differs from desktop to desktop.
        bus.connect(name, QString(), name, u"ActiveChanged"_s, this, SLOT(hear(QDBusMessage)));
    }
    // Nobody can take back what was said when the bus has gone.
    bus.connect(QString(),
        u"/org/freedesktop/DBus/Local"_s,
        u"org.freedesktop.DBus.Local"_s,
        u"Disconnected"_s,
        this,
        SLOT(forget()));
    // Gone, or another one's by now.
    connect(
        &m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, [this](const QString& name) {
            set(name, false);
        });
}

void ScreenSaverListener::forget()
{
    for (const auto& name : screenSavers())
        set(name, false);
}

void ScreenSaverListener::hear(const QDBusMessage& message)
{
    if (message.signature() == u"b")
        set(message.interface(), message.arguments().constFirst().toBool());
}

void ScreenSaverListener::set(const QString& interface, bool isActive)
{
    const bool wasActive = this->isActive();
    if (isActive)
        m_active.insert(interface);
    else
        m_active.remove(interface);
    if (this->isActive() != wasActive)
        Q_EMIT changed();
}
