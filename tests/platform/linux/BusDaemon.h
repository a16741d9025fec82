#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QTemporaryDir>

/// A message bus of the test's own. It may be stopped and started again at the same address.
class BusDaemon {
public:
    BusDaemon() { start(); }
    ~BusDaemon() { stop(); }

    QString address() const { return "unix:path=" + socket(); }

    void start();
    void stop();
    void send(int signal) const; ///< to its process

    /// A connection of the test's own; it ends with the bus.
    QDBusConnection connection() const { return QDBusConnection(address()); }
    /// Whether somebody listens to signals of that interface.
    bool isListenedTo(const QString& interface) const;

private:
    QString socket() const { return m_directory.path() + "/bus"; }

    QTemporaryDir m_directory;
    QProcess m_process;
};
