#include "identity/AppInfo.h"

#include <QDir>

namespace {

QString bundleVersion(const Bundle& bundle, const QString& fallback)
{
    const auto value = bundle.infoDictionary().value(QStringLiteral("CFBundleShortVersionString"));
    return value.typeId() == QMetaType::QString ? value.toString() : fallback;
}

/// Empty for a code without a folder of its own, which then is the container itself.
QString folderName(SearchPathDirectory directory)
{
    switch (directory) {
    case SearchPathDirectory::Caches:
        return QStringLiteral("Caches");
    case SearchPathDirectory::ApplicationSupport:
        return QStringLiteral("Application Support");
    case SearchPathDirectory::Preferences:
        return QStringLiteral("Preferences");
    }
    return {};
}

} // namespace

const AppInfo& AppInfo::shared()
{
    static const AppInfo info(Bundle::main());
    return info;
}

AppInfo::AppInfo(const Bundle& bundle)
    : m_bundle(bundle),
      m_version(bundleVersion(bundle, QStringLiteral("1.0.0.0"))),
      m_displayVersion(bundleVersion(bundle, QStringLiteral("1.0.0")))
{
}

QString AppInfo::applicationGroupIdentifier()
{
    return QStringLiteral("K7ZT3QW9RB.tavelor");
}

QUrl AppInfo::directoryUrl(SearchPathDirectory directory) const
{
    QString path;
    if (const auto container = Directories::groupContainer(applicationGroupIdentifier())) {
        path = QDir::cleanPath(QDir(*container).filePath(folderName(directory)));
    } else {
        const auto directories = Directories::userDirectories(directory);
        if (directories.isEmpty())
            qFatal("There is no user directory of kind %d.", static_cast<int>(directory));
        path = QDir(directories.constFirst())
                   .filePath(m_bundle.identifier().value_or(QStringLiteral("tavelor")));
    }
    if (!QFileInfo::exists(path))
        QDir().mkpath(path);
    return QUrl::fromLocalFile(path);
}

const QUrl& AppInfo::applicationSupportDirectory() const
{
    if (!m_applicationSupportDirectory)
        m_applicationSupportDirectory = directoryUrl(SearchPathDirectory::ApplicationSupport);
    return *m_applicationSupportDirectory;
}
