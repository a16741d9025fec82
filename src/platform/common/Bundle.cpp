#include "platform/Bundle.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

const Bundle& Bundle::main()
{
    // From the executable itself and not from argv[0], which the caller of exec may choose.
    static const Bundle bundle(QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe")))
                                   .dir()
                                   .absoluteFilePath(QStringLiteral("../share/tavelor")));
    return bundle;
}

Bundle::Bundle(const QString& resourceDirectory)
    : m_resourceDirectory(QDir::cleanPath(resourceDirectory))
{
    const QSettings information(
        QDir(m_resourceDirectory).filePath(QStringLiteral("Info.ini")), QSettings::IniFormat);
    const auto keys = information.allKeys();
    for (const auto& key : keys)
        m_infoDictionary.insert(key, information.value(key));
}

std::optional<QString> Bundle::identifier() const
{
    const auto value = m_infoDictionary.value(QStringLiteral("CFBundleIdentifier"));
    if (value.typeId() != QMetaType::QString || value.toString().isEmpty())
        return std::nullopt;
    return value.toString();
}

std::optional<QString> Bundle::pathForResource(const QString& name, const QString& type) const
{
    const auto path = QDir(m_resourceDirectory).filePath(name + u'.' + type);
    if (!QFileInfo(path).isFile())
        return std::nullopt;
    return path;
}
