#include "library/Database.h"

#include <sqlite3.h>

#include <QFile>

#include <sys/stat.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Whether SQLite may open what is there: a file, or nothing yet. A link that leads nowhere is
/// somebody's file on a drive that is away, and SQLite would make a new one in its place.
bool isFileOrNothing(const QString& path)
{
    const auto name = QFile::encodeName(path);
    struct stat found {};
    if (lstat(name.constData(), &found) != 0)
        return true;
    return stat(name.constData(), &found) == 0 && S_ISREG(found.st_mode);
}

} // namespace

void ResultSet::Finalizer::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

ResultSet::ResultSet(sqlite3_stmt* statement) : m_statement(statement) {}

bool ResultSet::next()
{
    const int result = sqlite3_step(m_statement.get());
    m_hasFailed = result != SQLITE_ROW && result != SQLITE_DONE;
    return result == SQLITE_ROW;
}

int ResultSet::columnIndex(const char* name) const
{
    for (int i = 0; i < sqlite3_column_count(m_statement.get()); ++i) {
        if (sqlite3_stricmp(sqlite3_column_name(m_statement.get(), i), name) == 0)
            return i;
    }
    return -1;
}

int ResultSet::intForColumn(int index) const
{
    return index < 0 ? 0 : sqlite3_column_int(m_statement.get(), index);
}

QString ResultSet::stringForColumn(int index) const
{
    if (index < 0)
        return {};
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(m_statement.get(), index));
    return QString::fromUtf8(text, sqlite3_column_bytes(m_statement.get(), index));
}

void Database::Closer::operator()(sqlite3* connection) const
{
    sqlite3_close_v2(connection);
}

Database::Database(QString path) : m_path(std::move(path)) {}

bool Database::open(std::chrono::milliseconds busyTimeout)
{
    m_connection.reset();
    if (!isFileOrNothing(m_path))
        return false;
    sqlite3* connection = nullptr;
    const int result = sqlite3_open_v2(m_path.toUtf8().constData(),
        &connection,
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
        nullptr);
    m_connection.reset(connection);
    if (result != SQLITE_OK) {
        m_connection.reset();
        return false;
    }
    sqlite3_busy_timeout(connection, static_cast<int>(busyTimeout.count()));
    return true;
}

std::optional<ResultSet> Database::executeQuery(const QString& sql, const QStringList& arguments)
{
    if (!m_connection)
        return std::nullopt;
    const auto text = sql.toUtf8();
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(m_connection.get(), text.constData(), -1, &statement, nullptr) !=
        SQLITE_OK)
        return std::nullopt;
    ResultSet rows(statement);
    for (int i = 0; i < arguments.size(); ++i) {
        const auto argument = arguments[i].toUtf8();
        sqlite3_bind_text(statement,
            i + 1,
            argument.constData(),
            static_cast<int>(argument.size()),
            SQLITE_TRANSIENT); // NOLINT(cppcoreguidelines-pro-type-cstyle-cast): SQLite's macro
    }
    return rows;
}

bool Database::executeUpdate(const QString& sql, const QStringList& arguments)
{
    auto rows = executeQuery(sql, arguments);
    if (!rows)
        return false;
    while (rows->next()) {
    }
    return !rows->hasFailed();
}

bool Database::isBusy() const
{
    return m_connection && sqlite3_errcode(m_connection.get()) == SQLITE_BUSY;
}

QString Database::lastErrorMessage() const
{
    return m_connection ? QString::fromUtf8(sqlite3_errmsg(m_connection.get()))
                        : u"the database is not open"_s;
}
