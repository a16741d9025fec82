#include "library/LibraryEditor.h"

#include "library/VideoUrl.h"

#include <QDateTime>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const auto createTable = uR"(
    create table if not exists LocalVideos (
        vid integer not null default 0,
        sign text not null unique,
        preurl text not null default '',
        title text not null default '',
        url text not null default '',
        description text not null default '',
        time integer not null default 0,
        size integer not null default 0,
        imgurl text not null default '',
        imgsize integer not null default 0,
        tags text not null default '',
        ratio text not null default '',
        width integer not null default 0,
        height integer not null default 0,
        frame integer not null default 0,
        rate integer not null default 0,
        audio integer not null default 0,
        uptime text not null default '',
        down integer not null default 0,
        view integer not null default 0,
        author text not null default '',
        avatar text not null default '',
        avatarsize integer not null default 0,
        hp text not null default '',
        upcount integer not null default 0
    ))"_s;

const auto insertRow = uR"(
    insert into LocalVideos (vid, sign, title, url, time, size, ratio, width, height, frame, rate, audio, uptime)
    values ((select coalesce(max(vid), 0) + 1 from LocalVideos), ?, ?, ?,
        cast(? as integer), cast(? as integer), ?, cast(? as integer), cast(? as integer),
        cast(? as integer), cast(? as integer), cast(? as integer), ?))"_s;

QString text(const QUrl& url)
{
    return url.toString(QUrl::FullyEncoded);
}

} // namespace

LibraryEditor::LibraryEditor(Database database) : m_database(std::move(database))
{
    if (!m_database.open() || !m_database.executeUpdate(createTable))
        m_failure = m_database.lastErrorMessage();
}

std::optional<std::vector<LibraryEditor::Entry>> LibraryEditor::entries()
{
    auto rows = m_database.executeQuery(u"select * from LocalVideos"_s);
    if (!rows)
        return std::nullopt;
    const int sign = rows->columnIndex("sign");
    const int title = rows->columnIndex("title");
    const int url = rows->columnIndex("url");
    const int time = rows->columnIndex("time");
    const int size = rows->columnIndex("size");
    const int width = rows->columnIndex("width");
    const int height = rows->columnIndex("height");

    std::vector<Entry> entries;
    while (rows->next()) {
        entries.push_back({rows->stringForColumn(sign),
            rows->stringForColumn(title),
            videoUrl(rows->stringForColumn(url)).value_or(QUrl()),
            rows->intForColumn(time),
            rows->stringForColumn(size).toLongLong(), // may be more than 32 bits
            rows->intForColumn(width),
            rows->intForColumn(height)});
    }
    if (rows->hasFailed())
        return std::nullopt;
    return entries;
}

LibraryEditor::Outcome LibraryEditor::add(const VideoFacts& facts, const QUrl& url)
{
    auto known =
        m_database.executeQuery(u"select url from LocalVideos where sign = ?"_s, {facts.sign});
    if (!known)
        return Outcome::Failed;
    if (known->next()) {
        const auto knownUrl = videoUrl(known->stringForColumn(0));
        known.reset(); // or the update would wait for its own reader
        if (knownUrl && videoFileExists(*knownUrl))
            return Outcome::AlreadyThere;
        const bool isMoved = m_database.executeUpdate(
            u"update LocalVideos set url = ? where sign = ?"_s, {text(url), facts.sign});
        return isMoved ? Outcome::Moved : Outcome::Failed;
    }
    if (known->hasFailed())
        return Outcome::Failed;
    known.reset();

    const bool isAdded = m_database.executeUpdate(insertRow,
        {facts.sign,
            facts.title,
            text(url),
            QString::number(facts.seconds),
            QString::number(facts.bytes),
            facts.ratio(),
            QString::number(facts.width),
            QString::number(facts.height),
            QString::number(facts.framesPerSecond),
            QString::number(facts.bitsPerSecond),
            QString::number(facts.hasSound ? 1 : 0),
            QDateTime::currentDateTimeUtc().toString(Qt::ISODate)});
    return isAdded ? Outcome::Added : Outcome::Failed;
}
