#include "desktops/Descendants.h"

#include "support/TemporaryHome.h"

#include <QDir>

#include <csignal>
#include <ctime>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

pid_t parentOf(pid_t process)
{
    const auto status = TemporaryHome::contents(u"/proc/%1/stat"_s.arg(process));
    return status.mid(status.lastIndexOf(')')).split(' ').value(2).toInt(); // see proc(5)
}

} // namespace

void Descendants::adopt()
{
    prctl(PR_SET_CHILD_SUBREAPER, 1);
}

void Descendants::endAll()
{
    // Each one that ends gives us its children.
    for (bool isAny = true; isAny;) {
        isAny = false;
        for (const auto& name : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
            const auto process = name.toInt();
            if (process <= 0 || parentOf(process) != getpid())
                continue;
            kill(process, SIGKILL);
            isAny = waitpid(process, nullptr, 0) > 0 || isAny;
        }
    }
}

double Descendants::processorSeconds(qint64 process)
{
    clockid_t clock{};
    timespec used{};
    // 0 would be this process.
    if (process == 0 || clock_getcpuclockid(static_cast<pid_t>(process), &clock) != 0 ||
        clock_gettime(clock, &used) != 0)
        return 0;
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}
