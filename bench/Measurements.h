#pragma once

#include <QString>
#include <QStringList>

/// What a process costs, as the system accounts for it.
namespace Measurements {

/// Megabytes (10^6), each shared page counted in part.
double proportionalMemory(qint64 process);
/// Processor seconds that a command uses until it ends.
double processorSecondsOf(const QString& program, const QStringList& arguments);

/// One line of the report. `goal` is in the same unit; less is better.
void report(const QString& what, double value, double goal, const QString& unit);
/// A line without a goal.
void note(const QString& what, double value, const QString& unit);

} // namespace Measurements
