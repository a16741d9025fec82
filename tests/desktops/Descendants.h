#pragma once

#include <QtGlobal>

/// The processes that this one has started, and those that they have.
namespace Descendants {

/// From now on a process whose parent has ended is ours, so that none gets lost.
void adopt();
/// Ends them all at once, and waits for it.
void endAll();

/// What any process and its threads have used so far, to the nanosecond; 0 for none.
double processorSeconds(qint64 process);

} // namespace Descendants
