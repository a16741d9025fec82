#include "platform/SessionInstance.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

namespace {

const auto helperName = QStringLiteral("com.zemra.tavelor.helper");

}

SessionInstance::Claim SessionInstance::claim()
{
    auto* const bus = QDBusConnection::sessionBus().interface();
    if (!bus)
        return Claim::NoBus;
    const auto reply = bus->registerService(helperName);
    if (!reply.isValid())
        return Claim::NoBus;
    return reply == QDBusConnectionInterface::ServiceRegistered ? Claim::Owned : Claim::Taken;
}

bool SessionInstance::isClaimed()
{
    auto* const bus = QDBusConnection::sessionBus().interface();
    return bus && bus->isServiceRegistered(helperName);
}
