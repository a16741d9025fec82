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
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;

    QString path() const { return m_directory.path(); }
    QString container() const; ///< what the helper and its companion share
    QString suiteFile() const;
    QString databaseFile() const;

    /// Replaces or adds one line "key=value" as a person with a text editor would, and saves.
    void writeSuiteValue(const QString& key, const QString& value) const;
    void removeSuiteValue(const QString& key) const;
    /// The text after "key=", or a null string.
    QString suiteValue(const QString& key) const;

    static QByteArray contents(const QString& path);
    static void writeFile(const QString& path, const QByteArray& contents);

private:
    QTemporaryDir m_directory;
    QByteArray m_dataHome;
    QByteArray m_home;
};
