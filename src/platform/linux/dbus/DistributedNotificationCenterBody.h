#pragma once

#include "base/NotificationCenter.h"
#include "platform/DistributedNotificationCenter.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>

/// Hears every notification on the bus and hands it to the observers of its name.
class DistributedNotificationCenter::Body : public QObject {
    Q_OBJECT

public:
    Body();

    void setSuspended(bool isSuspended);

    QDBusConnection bus;
    NotificationCenter observers;

public Q_SLOTS:
    void deliver(const QDBusMessage& message);

private:
    bool m_isSuspended = false;
    QStringList m_waiting; // names, the one posted last at the end
};
