#include "library/LocalVideoDBManager.h"

#include "library/LibrarySeed.h"

#include <QFile>

#include <sys/stat.h>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// The main thread waits meanwhile. A look at the library may come upon two locks, and a deletion
/// needs two.
constexpr auto busyTimeout = 20ms;

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
    : m_db(makeDatabase(appInfo, bundle)),
      m_seed(bundle.pathForResource(u"Fendix"_s, u"db"_s)),
      m_openedVersion(versionOfFile())
{
    printLine(m_db.databasePath());
    open();
}

Database LocalVideoDBManager::makeDatabase(
    const AppInfo& appInfo, const Bundle& bundle, std::FILE* diagnostics)
{
    Database database(appInfo.applicationSupportDirectory().toLocalFile() + u"/Fendix.db"_s);
    if (const auto seed = bundle.pathForResource(u"Fendix"_s, u"db"_s)) {
        if (const auto failure = LibrarySeed::fill(database.databasePath(), *seed, busyTimeout))
            printLine(*failure, diagnostics);
    }
    return database;
}

void LocalVideoDBManager::open()
{
    if (m_db.open(busyTimeout))
        m_isOpenFailureReported = false;
    else if (!std::exchange(m_isOpenFailureReported, true))
        printLine(u"db open failure"_s);
}

std::optional<LocalVideoDBManager::FileVersion> LocalVideoDBManager::versionOfFile() const
{
    struct stat file {};
    if (stat(QFile::encodeName(m_db.databasePath()).constData(), &file) != 0)
        return std::nullopt;
    return FileVersion{
        file.st_dev, file.st_ino, file.st_size, file.st_ctim.tv_sec, file.st_ctim.tv_nsec};
}

/// Files are replaced, deleted, and others are copied over them, all of which SQLite does not see.
void LocalVideoDBManager::openAnewIfChanged()
{
    // The version is taken before the file is opened, so that a file that is replaced in between
    // is noticed the next time.
    auto version = versionOfFile();
    if (m_db.isOpen() && version && version == m_openedVersion)
        return;
    if (m_seed) {
        if (const auto failure = LibrarySeed::fill(m_db.databasePath(), *m_seed, busyTimeout))
            reportFailure(*failure);
        version = versionOfFile();
    }
    m_openedVersion = version;
    open();
}

std::deque<VideoDetail> LocalVideoDBManager::videos(
    const QString& sql, const QStringList& arguments)
{
    openAnewIfChanged();
    std::deque<VideoDetail> videos;
    auto rows = m_db.executeQuery(sql, arguments);
    if (rows) {
        const Columns columns(*rows);
        while (rows->next())
            videos.push_back(columns.video(*rows));
    }
    if (rows && !rows->hasFailed()) {
        m_lastReading = Reading::Complete;
        m_reportedFailures.clear();
        return videos;
    }
    m_openedVersion.reset(); // the next query opens it anew
    m_lastReading = m_db.isBusy() ? Reading::Busy : Reading::Failed;
    if (m_lastReading == Reading::Failed && m_db.isOpen())
        reportFailure(m_db.lastErrorMessage());
    return videos;
}

/// Once for each reason, because the library is read again and again.
void LocalVideoDBManager::reportFailure(const QString& reason)
{
    if (m_reportedFailures.contains(reason))
        return;
    m_reportedFailures.append(reason);
    printLine(u"cannot read the library: %1"_s.arg(reason), stderr);
}

std::deque<VideoDetail> LocalVideoDBManager::allVideos()
{
    return videos(u"select * from LocalVideos"_s, {});
}

std::optional<VideoDetail> LocalVideoDBManager::video(const QString& sign)
{
    const auto found = videos(u"select * from LocalVideos where sign = ?"_s, {sign});
    if (found.empty())
        return std::nullopt;
    return found.front();
}

void LocalVideoDBManager::deleteVideo(const QString& sign)
{
    openAnewIfChanged();
    const bool isDeleted = m_db.executeUpdate(u"delete from LocalVideos where sign = ?"_s, {sign});
    if (!isDeleted)
        m_openedVersion.reset(); // the next query opens it anew
    printLine(u"delete %1 %2"_s.arg(sign, isDeleted ? u"true" : u"false"));
}
