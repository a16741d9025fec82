#include "platform/SessionInstance.h"

#include "platform/linux/dbus/SessionNames.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

SessionInstance::Claim SessionInstance::claim()
{
    auto* const bus = QDBusConnection::sessionBus().interface();
    if (!bus)
        return Claim::NoBus;
    const auto reply = bus->registerService(SessionNames::helper);
    if (!reply.isValid())
        return Claim::NoBus;
    return reply == QDBusConnectionInterface::ServiceRegistered ? Claim::Owned : Claim::Taken;
}

bool SessionInstance::isClaimed()
{
    auto* const bus = QDBusConnection::sessionBus().interface();
    return bus && bus->isServiceRegistered(SessionNames::helper);
}
