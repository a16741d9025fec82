#pragma once

#include "records/VideoDetail.h"

#include <QStringList>

#include <memory>
#include <vector>

struct sqlite3;

/// The library's file as the importing companion writes it, and rows for it. The schema here is
/// the tests' own, so that they do not follow ours into an error.
namespace VideoRows {

/// Another program that writes to the file, and keeps everybody else out while it lives.
class Writer {
public:
    explicit Writer(const QString& databaseFile);

private:
    std::shared_ptr<sqlite3> m_connection;
};

/// Makes the file, with an empty table that has all columns.
void createTable(const QString& databaseFile);

VideoDetail row(const QString& sign, const QString& url);
void insert(const QString& databaseFile, const std::vector<VideoDetail>& rows);

/// Runs any SQL and gives the first column of what it finds; the test ends when it fails.
QStringList execute(const QString& databaseFile, const QString& sql);

/// The signs in the file, in the table's order.
QStringList signs(const QString& databaseFile);

} // namespace VideoRows
