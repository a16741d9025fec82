#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// Codes of well-known directories. Others may be cast to this type; they have no folder name of
/// their own.
enum class SearchPathDirectory : int {
    Caches = 13,
    ApplicationSupport = 14,
    Preferences = 22,
};

/// Where files of this user, and of a group of programs of this user, belong. All paths are
/// absolute.
namespace Directories {

/// The folder that all programs of the group share, or none where no home is known.
std::optional<QString> groupContainer(const QString& groupIdentifier);

/// The user's own directories for a code, the preferred one first; empty for a code that has no
/// directory here.
QStringList userDirectories(SearchPathDirectory directory);

/// Makes a directory and those above it that are missing, each for this user only whatever the
/// umask. Whether there is a directory now.
bool make(const QString& path);

} // namespace Directories
