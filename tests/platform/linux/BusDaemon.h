#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

/// A message bus of the test's own. It may be stopped and started again at the same address.
class BusDaemon {
public:
    enum class Start { Now, Later };
    explicit BusDaemon(Start start = Start::Now);
    ~BusDaemon();
    BusDaemon(const BusDaemon&) = delete;
    BusDaemon& operator=(const BusDaemon&) = delete;

    QString address() const;

    void start();
    void stop();
    void pause() const; ///< it takes connections and answers nobody
    void resume() const;

    /// A connection of the test's own; it ends with the bus.
    QDBusConnection connection() const { return QDBusConnection(m_name); }
    /// Whether somebody listens to signals of that interface.
    bool isListenedTo(const QString& interface) const;

private:
    QTemporaryDir m_directory;
    QProcess m_process;
    QString m_name; // of the connection
};
