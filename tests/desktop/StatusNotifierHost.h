#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// An entry of a menu as it is exported (com.canonical.dbusmenu).
struct MenuEntry {
    int id = 0;
    QString title; ///< "-" for a separator
    QString shortcut;
    bool enabled = true;
    bool markable = false;
    bool marked = false;
    std::vector<MenuEntry> children;
};

/// The status bar: the watcher and the host of status notifier items on a session bus, played by
/// the test. It reads and clicks menus as a panel does.
class StatusNotifierHost : public QObject {
    Q_OBJECT

public:
    explicit StatusNotifierHost(const QString& busAddress);
    ~StatusNotifierHost() override;

    /// Whether an item has come whose owner is still there.
    bool hasItem() const;
    int registrations() const { return m_registrations; }
    QVariant itemProperty(const QString& name) const;

    /// The whole menu; no entries while there is none.
    std::vector<MenuEntry> menu() const;
    /// By titles from the top; none if there is none like that.
    std::optional<MenuEntry> entry(const QStringList& path) const;
    /// The titles on the level below the path, in order.
    QStringList titles(const QStringList& path = {}) const;
    /// Returns when the event has been taken; what it does comes later.
    void click(const QStringList& path) const;
    void click(int id) const;

    void registerItem(const QString& service);

Q_SIGNALS:
    void layoutChanged();

private:
    QDBusMessage call(const QString& path,
        const QString& interface,
        const QString& method,
        const QVariantList& arguments) const;

    QString m_name;
    QDBusConnection m_bus;
    QString m_service;
    int m_registrations = 0;
};

/// What the bus sees of it.
class StatusNotifierWatcherAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)

public:
    explicit StatusNotifierWatcherAdaptor(StatusNotifierHost& host);

    bool isHostRegistered() const { return true; }
    int protocolVersion() const { return 0; }
    QStringList items() const { return {}; }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString& service);

private:
    StatusNotifierHost& m_host;
};
