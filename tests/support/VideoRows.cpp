#include "support/VideoRows.h"

#include <QDir>
#include <QFileInfo>

#include <sqlite3.h>

#include <memory>

namespace {

struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
};

std::unique_ptr<sqlite3, Closer> open(const QString& databaseFile)
{
    QDir().mkpath(QFileInfo(databaseFile).path());
    sqlite3* connection = nullptr;
    if (sqlite3_open(databaseFile.toUtf8().constData(), &connection) != SQLITE_OK)
        qFatal("Cannot open %s.", qUtf8Printable(databaseFile));
    return std::unique_ptr<sqlite3, Closer>(connection);
}

void run(sqlite3* connection, const QString& sql)
{
    char* error = nullptr;
    if (sqlite3_exec(connection, sql.toUtf8().constData(), nullptr, nullptr, &error) != SQLITE_OK)
        qFatal("%s: %s", qUtf8Printable(sql), error);
}

QString quoted(QString text)
{
    return u'\'' + text.replace(u'\'', QStringLiteral("''")) + u'\'';
}

} // namespace

VideoRows::Writer::Writer(const QString& databaseFile) : m_connection(open(databaseFile).release())
{
    run(m_connection.get(), QStringLiteral("begin exclusive"));
}

void VideoRows::Writer::Closer::operator()(sqlite3* connection) const
{
    sqlite3_close(connection); // ends the transaction
}

void VideoRows::createTable(const QString& databaseFile)
{
    execute(databaseFile,
        QStringLiteral(
            "create table LocalVideos (vid int, sign text, preurl text, title text, url text, "
            "description text, time int, size int, imgurl text, imgsize int, tags text, "
            "ratio text, width int, height int, frame int, rate int, audio int, uptime text, "
            "down int, view int, author text, avatar text, avatarsize int, hp text, "
            "upcount int)"));
}

VideoDetail VideoRows::row(const QString& sign, const QString& url)
{
    // Every member another value, so that two that are exchanged are noticed.
    return {1,
        sign,
        QStringLiteral("pre"),
        QStringLiteral("title"),
        url,
        QStringLiteral("text"),
        2,
        3,
        QStringLiteral("img"),
        4,
        QStringLiteral("tags"),
        QStringLiteral("16:9"),
        5,
        6,
        7,
        8,
        9,
        QStringLiteral("up"),
        10,
        11,
        QStringLiteral("author"),
        QStringLiteral("avatar"),
        12,
        QStringLiteral("hp"),
        13};
}

void VideoRows::insert(const QString& databaseFile, const std::vector<VideoDetail>& rows)
{
    const auto connection = open(databaseFile);
    run(connection.get(), QStringLiteral("begin"));
    for (const auto& row : rows) {
        const QStringList values{QString::number(row.id),
            quoted(row.sign),
            quoted(row.preurl),
            quoted(row.title),
            quoted(row.url),
            quoted(row.description),
            QString::number(row.time),
            QString::number(row.size),
            quoted(row.imgurl),
            QString::number(row.imgsize),
            quoted(row.tags),
            quoted(row.ratio),
            QString::number(row.width),
            QString::number(row.height),
            QString::number(row.frame),
            QString::number(row.rate),
            QString::number(row.audio),
            quoted(row.uptime),
            QString::number(row.down),
            QString::number(row.view),
            quoted(row.author),
            quoted(row.avatar),
            QString::number(row.avatarsize),
            quoted(row.hp),
            QString::number(row.upcount)};
        run(connection.get(),
            QStringLiteral("insert into LocalVideos values (%1)").arg(values.join(u',')));
    }
    run(connection.get(), QStringLiteral("commit"));
}

void VideoRows::execute(const QString& databaseFile, const QString& sql)
{
    run(open(databaseFile).get(), sql);
}

QStringList VideoRows::signs(const QString& databaseFile)
{
    QStringList signs;
    sqlite3_exec(
        open(databaseFile).get(),
        "select sign from LocalVideos",
        [](void* list, int, char** values, char**) {
            static_cast<QStringList*>(list)->append(QString::fromUtf8(values[0]));
            return 0;
        },
        &signs,
        nullptr);
    return signs;
}
