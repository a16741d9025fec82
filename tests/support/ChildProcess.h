#pragma once

#include <QProcess>

#include <csignal>
#include <sys/prctl.h>

namespace ChildProcess {

/// Sends the process, once it is started, a signal when this one has ended in any way: a test that
/// is killed or crashes leaves no server behind. To be started on the main thread.
inline void endWithThisProcess(QProcess& process, int signal = SIGKILL)
{
    process.setChildProcessModifier([signal] { prctl(PR_SET_PDEATHSIG, signal); });
}

} // namespace ChildProcess
