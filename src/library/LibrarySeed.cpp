#include "library/LibrarySeed.h"

#include "library/Database.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// An empty file for its user only. One that is there already is none of our business.
std::optional<QString> makeFile(const QString& path)
{
    const int file =
        ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file >= 0)
        close(file);
    else if (errno != EEXIST)
        return QString::fromStdString(std::generic_category().message(errno));
    return std::nullopt;
}

/// False also where that cannot be found out.
bool isWithoutTables(Database& library)
{
    auto tables = library.executeQuery(u"select name from main.sqlite_master"_s);
    return tables && !tables->next() && !tables->hasFailed();
}

bool copyTables(Database& library)
{
    struct Entry {
        QString type, name, sql;
    };
    std::vector<Entry> entries;
    auto rows = library.executeQuery(
        u"select type, name, sql from seed.sqlite_master where sql is not null "
        "and substr(name, 1, 7) <> 'sqlite_' order by type <> 'table'"_s);
    while (rows && rows->next()) {
        entries.push_back(
            {rows->stringForColumn(0), rows->stringForColumn(1), rows->stringForColumn(2)});
    }
    if (!rows || rows->hasFailed())
        return false;
    rows.reset();
    for (const auto& entry : entries) {
        if (!library.executeUpdate(entry.sql))
            return false;
        const auto copy = u"insert into main.\"%1\" select * from seed.\"%1\""_s.arg(entry.name);
        if (entry.type == u"table" && !library.executeUpdate(copy))
            return false;
    }
    return true;
}

} // namespace

std::optional<QString> LibrarySeed::fill(
    const QString& library, const QString& seed, std::chrono::milliseconds busyTimeout)
{
    if (auto failure = makeFile(library))
        return failure;
    Database database(library);
    // What cannot be opened or read is reported by whoever reads it next.
    if (!database.open(busyTimeout) || !isWithoutTables(database))
        return std::nullopt;
    // Looked at once more inside the transaction: until its end nobody else can make a table.
    if (database.executeUpdate(u"attach ? as seed"_s, {seed}) &&
        database.executeUpdate(u"begin"_s)) {
        if (!isWithoutTables(database))
            return std::nullopt;
        if (copyTables(database) && database.executeUpdate(u"commit"_s))
            return std::nullopt;
    }
    if (database.isBusy())
        return std::nullopt;
    return database.lastErrorMessage(); // closing the database takes everything back
}
