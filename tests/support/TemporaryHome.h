#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// An empty home for the test and for the processes that it starts; the environment points to it
/// while it lives.
class TemporaryHome {
public:
    TemporaryHome();
    ~TemporaryHome();

    QString path() const { return m_directory.path(); }
    /// What the helper and its companion share.
    QString container() const { return path() + "/share/K7ZT3QW9RB.tavelor"; }
    QString suiteFile() const { return container() + "/Preferences/K7ZT3QW9RB.tavelor.conf"; }
    QString databaseFile() const { return container() + "/Application Support/Fendix.db"; }

    /// Replaces or adds one line "key=value" as a person with a text editor would, and saves. A
    /// null value takes the line away.
    void writeSuiteValue(const QString& key, const QString& value) const;
    /// The text after "key=", or a null string.
    QString suiteValue(const QString& key) const;

    static QByteArray contents(const QString& path);
    static void writeFile(const QString& path, const QByteArray& contents);

private:
    QTemporaryDir m_directory;
    QByteArray m_dataHome;
    QByteArray m_home;
};
