#include "support/ProcessMemory.h"

#include "support/TemporaryHome.h"

#include <QFile>

qint64 ProcessMemory::peak()
{
    const auto status = TemporaryHome::contents(QStringLiteral("/proc/self/status"));
    const auto at = status.indexOf("VmHWM:") + 6;
    return status.mid(at, status.indexOf("kB", at) - at).trimmed().toLongLong() / 1024;
}

void ProcessMemory::forgetPeak()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (!file.open(QIODevice::WriteOnly) || file.write("5") != 1)
        qFatal("The system does not forget what memory was used.");
}
