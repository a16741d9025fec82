#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>
#include <optional>

struct sqlite3;
struct sqlite3_stmt;

/// The rows that a query found, one at a time. Belongs to its database and must not outlive it.
class ResultSet {
public:
    /// Moves to the next row, the first one to begin with. False at the end, and when the rest
    /// cannot be read, which `hasFailed()` tells apart.
    bool next();
    bool hasFailed() const { return m_hasFailed; }

    /// The index of a column, or -1 when there is none of that name (upper and lower case are the
    /// same, as in SQL). Look it up once a query, not once a row.
    int columnIndex(const char* name) const;

    /// The column's value in this row; 0 or the empty string for NULL and for the index -1.
    int intForColumn(int index) const; ///< 32 bits, signed; larger numbers lose their upper bits
    QString stringForColumn(int index) const;

private:
    friend class Database;
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };
    explicit ResultSet(sqlite3_stmt* statement);

    std::unique_ptr<sqlite3_stmt, Finalizer> m_statement;
    bool m_hasFailed = false;
};

/// An SQLite file (https://sqlite.org) with the few operations that the library needs.
class Database {
public:
    /// Opens nothing yet.
    explicit Database(QString path);

    const QString& databasePath() const { return m_path; }

    /// Creates the file if it does not exist. False where something else is in its place: a folder,
    /// a pipe, a link to a file that is not there. `busyTimeout` is how long an operation waits for
    /// another process's lock, twice where it needs two of them; then it fails.
    bool open(std::chrono::milliseconds busyTimeout = std::chrono::milliseconds(500));
    bool isOpen() const { return m_connection != nullptr; }

    /// None when the database is not open or the statement cannot run. Arguments are bound as
    /// text to the question marks, in order.
    std::optional<ResultSet> executeQuery(const QString& sql, const QStringList& arguments = {});
    /// Whether the statement was carried out.
    bool executeUpdate(const QString& sql, const QStringList& arguments = {});

    /// Whether the last operation failed because another process has locked the file.
    bool isBusy() const;
    /// What went wrong last, for people.
    QString lastErrorMessage() const;

private:
    struct Closer {
        void operator()(sqlite3* connection) const;
    };

    QString m_path;
    std::unique_ptr<sqlite3, Closer> m_connection;
};
