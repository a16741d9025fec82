#pragma once

#include <QtGlobal>

/// What this process keeps in memory.
namespace ProcessMemory {

/// The most since the start, or since it was forgotten, in MiB.
qint64 peak();
void forgetPeak();

} // namespace ProcessMemory
