#pragma once

#include "platform/Bundle.h"
#include "platform/Directories.h"

#include <QString>
#include <QUrl>

/// The program's fixed identity and the directories that it shares with its companion.
class AppInfo {
public:
    /// That of the running program.
    static const AppInfo& shared();

    /// Reads the versions once. Borrows the bundle.
    explicit AppInfo(const Bundle& bundle);

    /// Names the group that the helper and its companion form: their preferences suite and the
    /// container of their files.
    static QString applicationGroupIdentifier();

    /// What an offered upgrade is compared with: "1.0.0.0" where the bundle does not say.
    const QString& version() const { return m_version; }
    /// What people see: "1.0.0" where the bundle does not say. The two fallbacks differ on purpose.
    const QString& displayVersion() const { return m_displayVersion; }

    /// The URL of a writable directory, made if it does not exist. A directory that cannot be made
    /// is returned all the same; whoever writes there will find out. Inside the group container
    /// where there is one, else in the user's own directory of that kind, under this program's
    /// name; without either the program cannot run.
    QUrl directoryUrl(SearchPathDirectory directory) const;
    /// Looked up once.
    const QUrl& applicationSupportDirectory() const;

private:
    const Bundle& m_bundle;
    QString m_version;
    QString m_displayVersion;
    mutable std::optional<QUrl> m_applicationSupportDirectory;
};
