#include "desktop/StatusNotifierHost.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const auto connectionName = u"status notifier host"_s;
const auto menuPath = u"/MenuBar"_s;
const auto menuInterface = u"com.canonical.dbusmenu"_s;

/// Of `a{sv}` and then `av`.
MenuEntry readEntry(const QDBusArgument& argument)
{
    MenuEntry entry;
    QVariantMap properties;
    argument.beginStructure();
    argument >> entry.id >> properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        entry.children.push_back(readEntry(child.variant().value<QDBusArgument>()));
    }
    argument.endArray();
    argument.endStructure();

    const bool isSeparator = properties.value(u"type"_s) == u"separator"_s;
    entry.title = isSeparator ? u"-"_s : properties.value(u"label"_s).toString();
    entry.enabled = properties.value(u"enabled"_s, true).toBool();
    entry.markKind = properties.value(u"toggle-type"_s).toString();
    entry.marked = properties.value(u"toggle-state"_s).toInt() == 1;
    const auto keys = qdbus_cast<QList<QStringList>>(properties.value(u"shortcut"_s));
    entry.shortcut = keys.value(0).join(u'+');
    return entry;
}

} // namespace

StatusNotifierHost::StatusNotifierHost(const QString& busAddress)
    : m_bus(QDBusConnection::connectToBus(busAddress, connectionName))
{
    m_bus.registerObject(u"/StatusNotifierWatcher"_s,
        this,
        QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties);
    if (!m_bus.registerService(u"org.kde.StatusNotifierWatcher"_s))
        qFatal("There is a watcher on the bus already.");
}

StatusNotifierHost::~StatusNotifierHost()
{
    QDBusConnection::disconnectFromBus(connectionName);
}

QVariant StatusNotifierHost::itemProperty(const QString& name) const
{
    const auto reply = call(u"/StatusNotifierItem"_s,
        u"org.freedesktop.DBus.Properties"_s,
        u"Get"_s,
        {u"org.kde.StatusNotifierItem"_s, name});
    return reply.value(0).value<QDBusVariant>().variant();
}

MenuEntry StatusNotifierHost::entry(const QString& path) const
{
    const auto layout = call(menuPath, menuInterface, u"GetLayout"_s, {0, -1, QStringList()});
    if (layout.size() < 2)
        return {};
    auto entry = readEntry(layout[1].value<QDBusArgument>());
    const auto titles = path.split(u'/', Qt::SkipEmptyParts);
    for (const auto& title : titles) {
        const auto found = std::ranges::find(entry.children, title, &MenuEntry::title);
        if (found == entry.children.end())
            return {};
        entry = MenuEntry(*found);
    }
    return entry;
}

void StatusNotifierHost::click(int id) const
{
    call(menuPath,
        menuInterface,
        u"Event"_s,
        {id, u"clicked"_s, QVariant::fromValue(QDBusVariant(0)), QVariant::fromValue(0U)});
}

QVariantList StatusNotifierHost::call(const QString& path,
    const QString& interface,
    const QString& method,
    const QVariantList& arguments) const
{
    if (m_service.isEmpty())
        return {};
    auto message = QDBusMessage::createMethodCall(m_service, path, interface, method);
    message.setArguments(arguments);
    const auto reply = m_bus.call(message);
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments() : QVariantList();
}
