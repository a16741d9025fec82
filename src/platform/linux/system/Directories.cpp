#include "platform/Directories.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::optional<QString> absolutePathIn(const char* variable)
{
    auto path = QFile::decodeName(qgetenv(variable));
    if (!QDir::isAbsolutePath(path))
        return std::nullopt;
    return QDir::cleanPath(path);
}

QString child(const QString& directory, const QString& name)
{
    return QDir(directory).filePath(name);
}

/// The base directory of https://specifications.freedesktop.org/basedir-spec for one variable.
std::optional<QString> baseDirectory(
    const char* variable, const std::optional<QString>& home, const QString& belowHome)
{
    if (auto path = absolutePathIn(variable))
        return path;
    if (home)
        return child(*home, belowHome);
    return std::nullopt;
}

/// The home of the account itself, for a process that was started without an environment.
std::optional<QString> accountHome()
{
    if (auto home = absolutePathIn("HOME"))
        return home;
    const auto* account = getpwuid(getuid()); // NOLINT(concurrency-mt-unsafe): main thread only
    const auto home = account ? QFile::decodeName(account->pw_dir) : QString();
    if (!QDir::isAbsolutePath(home))
        return std::nullopt;
    return QDir::cleanPath(home);
}

} // namespace

std::optional<QString> Directories::groupContainer(const QString& groupIdentifier)
{
    const auto data =
        baseDirectory("XDG_DATA_HOME", absolutePathIn("HOME"), QStringLiteral(".local/share"));
    if (!data)
        return std::nullopt;
    return child(*data, groupIdentifier);
}

QStringList Directories::userDirectories(SearchPathDirectory directory)
{
    std::optional<QString> path;
    switch (directory) {
    case SearchPathDirectory::Caches:
        path = baseDirectory("XDG_CACHE_HOME", accountHome(), QStringLiteral(".cache"));
        break;
    case SearchPathDirectory::ApplicationSupport:
        path = baseDirectory("XDG_DATA_HOME", accountHome(), QStringLiteral(".local/share"));
        break;
    case SearchPathDirectory::Preferences:
        path = baseDirectory("XDG_CONFIG_HOME", accountHome(), QStringLiteral(".config"));
        break;
    }
    return path ? QStringList{*path} : QStringList();
}

bool Directories::make(const QString& path)
{
    const QFileInfo information(path);
    if (information.isDir())
        return true;
    const auto parent = information.absolutePath();
    if (information.exists() || parent == path || !make(parent))
        return false;
    const auto name = QFile::encodeName(path);
    // The umask may have taken away even what the user needs.
    if (mkdir(name.constData(), S_IRWXU) == 0)
        return chmod(name.constData(), S_IRWXU) == 0;
    return QFileInfo(path).isDir(); // another process was faster
}
