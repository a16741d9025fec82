#include "identity/AppInfo.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

QString bundleVersion(const Bundle& bundle, const QString& fallback)
{
    const auto value = bundle.infoDictionary().value(u"CFBundleShortVersionString"_s);
    return value.typeId() == QMetaType::QString ? value.toString() : fallback;
}

/// Empty for a code without a folder of its own, which then is the container itself.
QString folderName(SearchPathDirectory directory)
{
    switch (directory) {
    case SearchPathDirectory::Caches:
        return u"Caches"_s;
    case SearchPathDirectory::ApplicationSupport:
        return u"Application Support"_s;
    case SearchPathDirectory::Preferences:
        return u"Preferences"_s;
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
      m_version(bundleVersion(bundle, u"1.0.0.0"_s)),
      m_displayVersion(bundleVersion(bundle, u"1.0.0"_s))
{
}

QString AppInfo::applicationGroupIdentifier()
{
    return u"K7ZT3QW9RB.tavelor"_s;
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
        path =
            QDir(directories.constFirst()).filePath(m_bundle.identifier().value_or(u"tavelor"_s));
    }
    Directories::make(path);
    return QUrl::fromLocalFile(path);
}

const QUrl& AppInfo::applicationSupportDirectory() const
{
    if (!m_applicationSupportDirectory)
        m_applicationSupportDirectory = directoryUrl(SearchPathDirectory::ApplicationSupport);
    return *m_applicationSupportDirectory;
}
