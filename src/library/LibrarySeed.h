#pragma once

#include <QString>

#include <chrono>
#include <optional>

/// The first contents of a library.
namespace LibrarySeed {

/// Copies the tables of the SQLite file `seed` into a library without any: one that is missing, or
/// that a full disk or a crash has left empty. One that has a table, that is locked, or that is no
/// database stays as it is. All or nothing is written, and always into the file that is there, so
/// that what another process has open or has just made is not lost.
///
/// Returns why the copy failed, for people; none also where there was nothing to do.
std::optional<QString> fill(
    const QString& library, const QString& seed, std::chrono::milliseconds busyTimeout);

} // namespace LibrarySeed
