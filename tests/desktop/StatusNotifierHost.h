#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

#include <vector>

/// An entry of a menu as it is exported (com.canonical.dbusmenu).
struct MenuEntry {
    int id = -1;   ///< of no entry
    QString title; ///< "-" for a separator
    QString shortcut;
    QString markKind; ///< "checkmark", "radio" or none
    bool enabled = true;
    bool marked = false;
    std::vector<MenuEntry> children;
};

/// The status bar: the watcher and the host of status notifier items on a session bus, played by
/// the test. It reads and clicks menus as a panel does. Paths are titles from the top with slashes
/// between them.
class StatusNotifierHost : public QObject {
    Q_OBJECT
    // What the bus sees of it.
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)

public:
    explicit StatusNotifierHost(const QString& busAddress);
    ~StatusNotifierHost() override;

    QVariant itemProperty(const QString& name) const;
    bool hasEntry(const QString& path) const { return entry(path).id >= 0; }
    /// The whole menu for no path; an entry without an ID for none that there is.
    MenuEntry entry(const QString& path) const;
    /// Returns when the event has been taken; what it does comes later.
    void click(const QString& path) const { click(entry(path).id); }
    void click(int id) const;

    bool isHostRegistered() const { return true; }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString& service) { m_service = service; }

private:
    QVariantList call(const QString& path,
        const QString& interface,
        const QString& method,
        const QVariantList& arguments) const;

    QDBusConnection m_bus;
    QString m_service;
};
