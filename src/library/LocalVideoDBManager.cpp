#include "library/LocalVideoDBManager.h"

#include <QFile>

#include <utility>

namespace {

void printLine(const QString& line, std::FILE* stream = stdout)
{
    std::fprintf(stream, "%s\n", qUtf8Printable(line));
    std::fflush(stream); // somebody may be reading along through a pipe
}

/// Where the query has each column of the table.
struct Columns {
    explicit Columns(const ResultSet& rows)
        : vid(rows.columnIndex("vid")),
          sign(rows.columnIndex("sign")),
          preurl(rows.columnIndex("preurl")),
          title(rows.columnIndex("title")),
          url(rows.columnIndex("url")),
          description(rows.columnIndex("description")),
          time(rows.columnIndex("time")),
          size(rows.columnIndex("size")),
          imgurl(rows.columnIndex("imgurl")),
          imgsize(rows.columnIndex("imgsize")),
          tags(rows.columnIndex("tags")),
          ratio(rows.columnIndex("ratio")),
          width(rows.columnIndex("width")),
          height(rows.columnIndex("height")),
          frame(rows.columnIndex("frame")),
          rate(rows.columnIndex("rate")),
          audio(rows.columnIndex("audio")),
          uptime(rows.columnIndex("uptime")),
          down(rows.columnIndex("down")),
          view(rows.columnIndex("view")),
          author(rows.columnIndex("author")),
          avatar(rows.columnIndex("avatar")),
          avatarsize(rows.columnIndex("avatarsize")),
          hp(rows.columnIndex("hp")),
          upcount(rows.columnIndex("upcount"))
    {
    }

    VideoDetail video(const ResultSet& row) const
    {
        return {
            .id = row.intForColumn(vid),
            .sign = row.stringForColumn(sign),
            .preurl = row.stringForColumn(preurl),
            .title = row.stringForColumn(title),
            .url = row.stringForColumn(url),
            .description = row.stringForColumn(description),
            .time = row.intForColumn(time),
            .size = row.intForColumn(size),
            .imgurl = row.stringForColumn(imgurl),
            .imgsize = row.intForColumn(imgsize),
            .tags = row.stringForColumn(tags),
            .ratio = row.stringForColumn(ratio),
            .width = row.intForColumn(width),
            .height = row.intForColumn(height),
            .frame = row.intForColumn(frame),
            .rate = row.intForColumn(rate),
            .audio = row.intForColumn(audio),
            .uptime = row.stringForColumn(uptime),
            .down = row.intForColumn(down),
            .view = row.intForColumn(view),
            .author = row.stringForColumn(author),
            .avatar = row.stringForColumn(avatar),
            .avatarsize = row.intForColumn(avatarsize),
            .hp = row.stringForColumn(hp),
            .upcount = row.intForColumn(upcount),
        };
    }

    int vid, sign, preurl, title, url, description, time, size, imgurl, imgsize, tags, ratio, width,
        height, frame, rate, audio, uptime, down, view, author, avatar, avatarsize, hp, upcount;
};

} // namespace

LocalVideoDBManager& LocalVideoDBManager::shared()
{
    static LocalVideoDBManager manager(AppInfo::shared(), Bundle::main());
    return manager;
}

LocalVideoDBManager::LocalVideoDBManager(const AppInfo& appInfo, const Bundle& bundle)
    : m_db(makeDatabase(appInfo, bundle))
{
    printLine(m_db.databasePath());
    if (!m_db.open())
        printLine(QStringLiteral("db open failure"));
}

Database LocalVideoDBManager::makeDatabase(
    const AppInfo& appInfo, const Bundle& bundle, std::FILE* diagnostics)
{
    const auto path =
        appInfo.applicationSupportDirectory().toLocalFile() + QStringLiteral("/Fendix.db");
    if (!QFile::exists(path)) {
        if (const auto seed =
                bundle.pathForResource(QStringLiteral("Fendix"), QStringLiteral("db"))) {
            QFile file(*seed);
            if (!file.copy(path))
                printLine(file.errorString(), diagnostics);
            else // the seed may be read-only, in a package for instance; the library is not
                QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        }
    }
    return Database(path);
}

std::deque<VideoDetail> LocalVideoDBManager::videos(
    const QString& sql, const QStringList& arguments)
{
    std::deque<VideoDetail> videos;
    auto rows = m_db.executeQuery(sql, arguments);
    if (rows) {
        const Columns columns(*rows);
        while (rows->next())
            videos.push_back(columns.video(*rows));
    }
    if (rows && !rows->hasFailed())
        m_lastReading = Reading::Complete;
    else
        m_lastReading = m_db.isBusy() ? Reading::Busy : Reading::Failed;
    if (m_lastReading == Reading::Failed && m_db.isOpen())
        reportFailure(m_db.lastErrorMessage());
    return videos;
}

/// Once for each reason, because the library is read again and again.
void LocalVideoDBManager::reportFailure(const QString& reason)
{
    if (std::exchange(m_reportedFailure, reason) != reason)
        printLine(QStringLiteral("cannot read the library: %1").arg(reason), stderr);
}

std::deque<VideoDetail> LocalVideoDBManager::allVideos()
{
    return videos(QStringLiteral("select * from LocalVideos"), {});
}

std::optional<VideoDetail> LocalVideoDBManager::video(const QString& sign)
{
    const auto found = videos(QStringLiteral("select * from LocalVideos where sign = ?"), {sign});
    if (found.empty())
        return std::nullopt;
    return found.front();
}

void LocalVideoDBManager::deleteVideo(const QString& sign)
{
    const bool isDeleted =
        m_db.executeUpdate(QStringLiteral("delete from LocalVideos where sign = ?"), {sign});
    printLine(QStringLiteral("delete %1 %2").arg(sign, isDeleted ? u"true" : u"false"));
}
