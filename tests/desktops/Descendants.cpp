#include "desktops/Descendants.h"

#include "support/TemporaryHome.h"

#include <QDir>

#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// From the state on, see proc(5).
QList<QByteArray> status(qint64 process)
{
    const auto text = TemporaryHome::contents(u"/proc/%1/stat"_s.arg(process));
    return text.mid(text.lastIndexOf(')') + 2).split(' ');
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
            if (process <= 0 || status(process).value(1).toInt() != getpid())
                continue;
            kill(process, SIGKILL);
            isAny = waitpid(process, nullptr, 0) > 0 || isAny;
        }
    }
}

double Descendants::processorSeconds(qint64 process)
{
    const auto fields = status(process);
    return static_cast<double>(fields.value(11).toLongLong() + fields.value(12).toLongLong()) /
           static_cast<double>(sysconf(_SC_CLK_TCK));
}
