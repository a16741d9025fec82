#pragma once

#include "base/NotificationCenter.h"
#include "platform/DistributedNotificationCenter.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

/// Hears every notification on the bus and hands it to the observers of its name.
class DistributedNotificationCenter::Body : public QObject {
    Q_OBJECT

public:
    Body();

    QDBusConnection bus;
    NotificationCenter observers;

public Q_SLOTS:
    void deliver(const QString& name, const QString& object, const QVariantMap& userInformation);
};
