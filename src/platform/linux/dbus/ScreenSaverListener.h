#pragma once

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QSet>
#include <QString>

/// Whether a screen saver or locker of the session is active, as those of the desktops tell
/// (https://specifications.freedesktop.org/idle-inhibit-spec names the first of them). What one has
/// told ends with it.
class ScreenSaverListener : public QObject {
    Q_OBJECT

public:
    ScreenSaverListener();

    bool isActive() const { return !m_active.isEmpty(); }

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void hear(const QDBusMessage& message);
    void forget();

private:
    void set(const QString& interface, bool isActive);

    QDBusServiceWatcher m_watcher;
    QSet<QString> m_active; // interfaces
};
