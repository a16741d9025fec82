#pragma once

#include <QHash>
#include <QString>
#include <QVariant>

#include <optional>

/// The program's resources and its information dictionary, in one folder beside the executable
/// (`../share/tavelor`) that has the same place in the build tree, an install and a package.
class Bundle {
public:
    /// The bundle of the running program.
    static const Bundle& main();

    explicit Bundle(const QString& resourceDirectory);

    /// From `Info.ini`; empty when the file is missing or cannot be read.
    const QHash<QString, QVariant>& infoDictionary() const { return m_infoDictionary; }
    std::optional<QString> identifier() const;

    /// The absolute path of an existing file `name.type`, or none.
    std::optional<QString> pathForResource(const QString& name, const QString& type) const;

private:
    QString m_resourceDirectory;
    QHash<QString, QVariant> m_infoDictionary;
};
