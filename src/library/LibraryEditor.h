#pragma once

#include "library/Database.h"
#include "library/VideoFacts.h"

#include <QUrl>

#include <optional>
#include <vector>

/// The importing companion's side of the library: it owns the schema and writes the rows.
class LibraryEditor {
public:
    /// A row, as far as people are shown it.
    struct Entry {
        QString sign;
        QString title;
        QUrl url;
        qint64 seconds;
        qint64 bytes;
        qint64 width;
        qint64 height;
    };

    /// Opens the file and makes the table if it has none.
    explicit LibraryEditor(Database database);

    /// What is wrong with the library, if anything: then nothing else here works.
    const std::optional<QString>& failure() const { return m_failure; }

    /// In the library's order. None when it cannot be read, which `lastErrorMessage` explains.
    std::optional<std::vector<Entry>> entries();

    enum class Outcome {
        Added,
        AlreadyThere,
        Moved,  ///< was there by the path of a file that is gone; has the new path now
        Failed, ///< `lastErrorMessage` says why
    };
    Outcome add(const VideoFacts& facts, const QUrl& url);

    QString lastErrorMessage() const { return m_database.lastErrorMessage(); }

private:
    Database m_database;
    std::optional<QString> m_failure;
};
