#include "desktop/StatusNotifierHost.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusVariant>
#include <QDateTime>

#include <algorithm>

namespace {

const auto watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto menuPath = QStringLiteral("/MenuBar");
const auto menuInterface = QStringLiteral("com.canonical.dbusmenu");

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

    entry.title = properties.value(QStringLiteral("type")) == QStringLiteral("separator")
                      ? QStringLiteral("-")
                      : properties.value(QStringLiteral("label")).toString();
    entry.enabled = properties.value(QStringLiteral("enabled"), true).toBool();
    entry.markable = properties.contains(QStringLiteral("toggle-type"));
    entry.marked = properties.value(QStringLiteral("toggle-state")).toInt() == 1;
    if (properties.contains(QStringLiteral("shortcut"))) {
        const auto shortcut = properties.value(QStringLiteral("shortcut")).value<QDBusArgument>();
        QList<QStringList> keys;
        shortcut >> keys;
        entry.shortcut = keys.value(0).join(u'+');
    }
    return entry;
}

const MenuEntry* find(const std::vector<MenuEntry>& entries, const QString& title)
{
    const auto found = std::ranges::find(entries, title, &MenuEntry::title);
    return found == entries.end() ? nullptr : &*found;
}

} // namespace

StatusNotifierHost::StatusNotifierHost(const QString& busAddress)
    : m_name(QStringLiteral("status notifier host")),
      m_bus(QDBusConnection::connectToBus(busAddress, m_name))
{
    new StatusNotifierWatcherAdaptor(*this); // a child
    m_bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), this);
    m_bus.connect(QString(),
        menuPath,
        menuInterface,
        QStringLiteral("LayoutUpdated"),
        this,
        SIGNAL(layoutChanged()));
    if (!m_bus.registerService(watcherName))
        qFatal("There is a watcher on the bus already.");
}

StatusNotifierHost::~StatusNotifierHost()
{
    QDBusConnection::disconnectFromBus(m_name);
}

bool StatusNotifierHost::hasItem() const
{
    return !m_service.isEmpty() && m_bus.interface()->isServiceRegistered(m_service);
}

void StatusNotifierHost::registerItem(const QString& service)
{
    m_service = service;
    ++m_registrations;
}

QVariant StatusNotifierHost::itemProperty(const QString& name) const
{
    const auto reply = call(QStringLiteral("/StatusNotifierItem"),
        QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"),
        {QStringLiteral("org.kde.StatusNotifierItem"), name});
    return reply.arguments().value(0).value<QDBusVariant>().variant();
}

std::vector<MenuEntry> StatusNotifierHost::menu() const
{
    if (m_service.isEmpty())
        return {};
    const auto reply =
        call(menuPath, menuInterface, QStringLiteral("GetLayout"), {0, -1, QStringList()});
    if (reply.type() != QDBusMessage::ReplyMessage)
        return {};
    return readEntry(reply.arguments().value(1).value<QDBusArgument>()).children;
}

std::optional<MenuEntry> StatusNotifierHost::entry(const QStringList& path) const
{
    auto entries = menu();
    MenuEntry entry;
    for (const auto& title : path) {
        const auto* const found = find(entries, title);
        if (!found)
            return std::nullopt;
        entry = *found;
        entries = entry.children;
    }
    return entry;
}

QStringList StatusNotifierHost::titles(const QStringList& path) const
{
    QStringList titles;
    const auto entries = path.isEmpty() ? menu() : entry(path).value_or(MenuEntry()).children;
    for (const auto& entry : entries)
        titles << entry.title;
    return titles;
}

void StatusNotifierHost::click(const QStringList& path) const
{
    const auto found = entry(path);
    if (!found)
        qFatal("There is no menu item %s.", qUtf8Printable(path.join(u'/')));
    click(found->id);
}

void StatusNotifierHost::click(int id) const
{
    call(menuPath,
        menuInterface,
        QStringLiteral("Event"),
        {id,
            QStringLiteral("clicked"),
            QVariant::fromValue(QDBusVariant(0)),
            QVariant::fromValue(static_cast<uint>(QDateTime::currentSecsSinceEpoch()))});
}

QDBusMessage StatusNotifierHost::call(const QString& path,
    const QString& interface,
    const QString& method,
    const QVariantList& arguments) const
{
    auto message = QDBusMessage::createMethodCall(m_service, path, interface, method);
    message.setArguments(arguments);
    return m_bus.call(message);
}

StatusNotifierWatcherAdaptor::StatusNotifierWatcherAdaptor(StatusNotifierHost& host)
    : QDBusAbstractAdaptor(&host), m_host(host)
{
}

void StatusNotifierWatcherAdaptor::RegisterStatusNotifierItem(const QString& service)
{
    m_host.registerItem(service);
}
