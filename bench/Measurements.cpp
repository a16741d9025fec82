#include "Measurements.h"

#include <QFile>
#include <QProcess>

#include <cstdio>
#include <sys/resource.h>

namespace {

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

double childrensSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

} // namespace

double Measurements::proportionalMemory(qint64 process)
{
    const auto lines = contents(QStringLiteral("/proc/%1/smaps_rollup").arg(process)).split('\n');
    for (const auto& line : lines) {
        if (line.startsWith("Pss:"))
            return line.mid(4).trimmed().chopped(3).toDouble() * 1024e-6;
    }
    return 0;
}

double Measurements::processorSecondsOf(const QString& program, const QStringList& arguments)
{
    const auto before = childrensSeconds();
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(program, arguments);
    process.waitForFinished(-1);
    return childrensSeconds() - before;
}

void Measurements::report(const QString& what, double value, double goal, const QString& unit)
{
    std::printf("%-58s %8.3f %-8s goal %7.3f  %s\n",
        qUtf8Printable(what),
        value,
        qUtf8Printable(unit),
        goal,
        value <= goal ? "met" : "MISSED");
    std::fflush(stdout);
}

void Measurements::note(const QString& what, double value, const QString& unit)
{
    std::printf("%-58s %8.3f %s\n", qUtf8Printable(what), value, qUtf8Printable(unit));
    std::fflush(stdout);
}
