#pragma once

#include <QStringList>

/// The exit statuses of `tavelorctl`.
enum class ExitStatus { Done = 0, Failed = 1, WrongUsage = 2 };

/// Carries out one command, the first of the arguments. What people asked for goes to standard
/// output; errors go to standard error as `tavelorctl: WHAT: WHY`.
ExitStatus runCommand(const QStringList& arguments);
