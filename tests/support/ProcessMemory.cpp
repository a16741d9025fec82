#include "support/ProcessMemory.h"

#include "support/TemporaryHome.h"

#include <QFile>

using namespace Qt::StringLiterals;

qint64 ProcessMemory::peak()
{
    const auto status = TemporaryHome::contents(u"/proc/self/status"_s);
    const auto at = status.indexOf("VmHWM:") + 6;
    return status.mid(at, status.indexOf("kB", at) - at).trimmed().toLongLong() / 1024;
}

void ProcessMemory::forgetPeak()
{
    QFile file(u"/proc/self/clear_refs"_s);
    if (!file.open(QIODevice::WriteOnly) || file.write("5") != 1)
        qFatal("The system does not forget what memory was used.");
}
