#pragma once

#include "platform/StatusBar.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QTimer>

/// Waits for a StatusNotifierItem host
/// (https://www.freedesktop.org/wiki/Specifications/StatusNotifierItem/). Qt decides once for a
/// process, when the first item is made, whether it speaks this protocol or the older one of X11
/// trays; so none is made before there is something to decide by. X11 trays are taken when no host
/// has come within a few seconds: some panels have such a tray beside their host.
class StatusBar::Body : public QObject {
    Q_OBJECT

public:
    explicit Body(StatusBar& statusBar);

    bool isAvailable = false;

private Q_SLOTS:
    void lookForHost();
    void receiveHost(const QDBusVariant& isRegistered);

private:
    void lookForTrayOfDisplay();
    void becomeAvailable();

    StatusBar& m_statusBar;
    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    QTimer m_patience;
};
