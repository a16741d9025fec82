#pragma once

#include "service/StandInService.h"

#include <QString>

#include <map>

/// Ways in which a service can keep its client waiting.
namespace Misbehaviour {

const std::map<QString, StandInService::Behaviour>& byName();

} // namespace Misbehaviour
