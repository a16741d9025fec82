#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QObject>

#include <algorithm>

/// An entry of a menu as it is exported (com.canonical.dbusmenu).
struct MenuEntry {
    int id = -1; ///< of no entry
    QVariantMap properties;
    QList<MenuEntry> children;

    QVariant operator[](const char* name) const { return properties.value(QLatin1String(name)); }
};

inline const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEntry& entry)
{
    QVariantList children;
    argument.beginStructure();
    argument >> entry.id >> entry.properties >> children;
    argument.endStructure();
    for (const auto& child : children)
        entry.children << qdbus_cast<MenuEntry>(child);
    return argument;
}

/// The status bar: the watcher and the host of status notifier items on a session bus, played by
/// the test. It reads and clicks menus as a panel does. Paths are titles from the top with slashes
/// between them.
class StatusNotifierHost : public QObject {
    Q_OBJECT
    // What the bus sees of it.
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered MEMBER m_isHostRegistered)

public:
    explicit StatusNotifierHost(const QString& busAddress)
        : m_bus(QDBusConnection::connectToBus(busAddress, QStringLiteral("host")))
    {
        m_bus.registerObject(QStringLiteral("/StatusNotifierWatcher"),
            this,
            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties);
        if (!m_bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher")))
            qFatal("There is a watcher on the bus already.");
    }
    ~StatusNotifierHost() override { QDBusConnection::disconnectFromBus(QStringLiteral("host")); }

    QVariant itemProperty(const QString& name) const
    {
        const auto reply = call("/StatusNotifierItem",
            "org.freedesktop.DBus.Properties",
            "Get",
            {QStringLiteral("org.kde.StatusNotifierItem"), name});
        return reply.value(0).value<QDBusVariant>().variant();
    }

    /// The whole menu for no path; an entry without an ID for none that there is.
    MenuEntry entry(const QString& path) const
    {
        const auto layout =
            call("/MenuBar", "com.canonical.dbusmenu", "GetLayout", {0, -1, QStringList()});
        auto entry = qdbus_cast<MenuEntry>(layout.value(1));
        for (const auto& title : path.split(u'/', Qt::SkipEmptyParts)) {
            const auto found = std::ranges::find_if(entry.children,
                [&](const MenuEntry& child) { return child["label"].toString() == title; });
            entry = found == entry.children.end() ? MenuEntry() : MenuEntry(*found);
        }
        return entry;
    }
    bool hasEntry(const QString& path) const { return entry(path).id >= 0; }

    /// Returns when the event has been taken; what it does comes later.
    void click(const QString& path) const { click(entry(path).id); }
    void click(int id) const
    {
        const auto data = QVariant::fromValue(QDBusVariant(0));
        call("/MenuBar",
            "com.canonical.dbusmenu",
            "Event",
            {id, QStringLiteral("clicked"), data, 0U});
    }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString& service) { m_service = service; }

private:
    QVariantList call(const char* path,
        const char* interface,
        const char* method,
        const QVariantList& arguments) const
    {
        if (m_service.isEmpty())
            return {};
        auto message = QDBusMessage::createMethodCall(
            m_service, QLatin1String(path), QLatin1String(interface), QLatin1String(method));
        message.setArguments(arguments);
        const auto reply = m_bus.call(message);
        return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments() : QVariantList();
    }

    QDBusConnection m_bus;
    QString m_service;
    bool m_isHostRegistered = true;
};
