#pragma once

#include "service/StandInService.h"

#include <QString>
#include <QStringList>

/// Ways in which a service can be slow, silent, wrong or hostile.
namespace Misbehaviour {

QStringList names();
/// Of `names()`.
StandInService::Behaviour named(const QString& name);

} // namespace Misbehaviour
