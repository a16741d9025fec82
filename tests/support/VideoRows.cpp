#include "support/VideoRows.h"

#include <QDir>
#include <QFileInfo>
#include <QVariant>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

std::shared_ptr<sqlite3> open(const QString& databaseFile)
{
    QDir().mkpath(QFileInfo(databaseFile).path());
    sqlite3* connection = nullptr;
    if (sqlite3_open(databaseFile.toUtf8().constData(), &connection) != SQLITE_OK)
        qFatal("Cannot open %s.", qUtf8Printable(databaseFile));
    sqlite3_busy_timeout(connection, 5000); // the helper may be reading
    return {connection, sqlite3_close};     // which ends a transaction
}

QStringList run(const std::shared_ptr<sqlite3>& connection, const QString& sql)
{
    QStringList found;
    const auto add = [](void* list, int, char** values, char**) {
        static_cast<QStringList*>(list)->append(QString::fromUtf8(values[0]));
        return 0;
    };
    const auto text = sql.toUtf8();
    if (sqlite3_exec(connection.get(), text.constData(), add, &found, nullptr) != SQLITE_OK)
        qFatal("%s: %s", text.constData(), sqlite3_errmsg(connection.get()));
    return found;
}

QString quoted(const QVariant& value)
{
    return u'\'' + value.toString().replace(u'\'', u"''"_s) + u'\'';
}

} // namespace

VideoRows::Writer::Writer(const QString& databaseFile) : m_connection(open(databaseFile))
{
    run(m_connection, u"begin exclusive"_s);
}

void VideoRows::createTable(const QString& databaseFile)
{
    execute(databaseFile,
        u"create table LocalVideos (vid int, sign text, preurl text, title text, url text, "
        "description text, time int, size int, imgurl text, imgsize int, tags text, ratio text, "
        "width int, height int, frame int, rate int, audio int, uptime text, down int, view int, "
        "author text, avatar text, avatarsize int, hp text, upcount int)"_s);
}

VideoDetail VideoRows::row(const QString& sign, const QString& url)
{
    // Every member another value, so that two that are exchanged are noticed.
    int number = 0;
    const auto value = [&]<typename Value>(const JSONMember<VideoDetail, Value>& of) {
        if constexpr (std::is_same_v<std::remove_const_t<Value>, QString>)
            return of.key == "sign" ? sign : of.key == "url" ? url : QString(of.key.data());
        else
            return ++number;
    };
    return std::apply(
        [&](const auto&... of) { return VideoDetail{value(of)...}; }, VideoDetail::jsonMembers());
}

void VideoRows::insert(const QString& databaseFile, const std::vector<VideoDetail>& rows)
{
    const auto connection = open(databaseFile);
    run(connection, u"begin"_s);
    for (const auto& row : rows) {
        const auto values =
            std::apply([&](const auto&... of) { return QStringList{quoted(row.*of.member)...}; },
                VideoDetail::jsonMembers());
        run(connection, u"insert into LocalVideos values (%1)"_s.arg(values.join(u',')));
    }
    run(connection, u"commit"_s);
}

QStringList VideoRows::execute(const QString& databaseFile, const QString& sql)
{
    return run(open(databaseFile), sql);
}

QStringList VideoRows::signs(const QString& databaseFile)
{
    return execute(databaseFile, u"select sign from LocalVideos"_s);
}
