#include "library/LocalVideoDBManager.h"

#include "library/VideoUrl.h"
#include "support/CapturedOutput.h"
#include "support/TemporaryHome.h"
#include "support/VideoRows.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>

#include <csignal>
#include <functional>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using Reading = LocalVideoDBManager::Reading;

namespace {

const auto fileUrl = u"file:///videos/a.mp4"_s;

void makeLibrary(const QString& file, const QStringList& signs)
{
    VideoRows::createTable(file);
    std::vector<VideoDetail> rows;
    for (const auto& sign : signs)
        rows.push_back(VideoRows::row(sign, fileUrl));
    VideoRows::insert(file, rows);
}

struct Fixture {
    TemporaryHome home;
    Bundle bundle{home.path()};
    AppInfo info{bundle};
    QString seed = home.path() + u"/Fendix.db"_s;
    QString file = home.databaseFile();

    std::unique_ptr<LocalVideoDBManager> open() const
    {
        return std::make_unique<LocalVideoDBManager>(info, bundle);
    }
};

QStringList signs(LocalVideoDBManager& library)
{
    QStringList signs;
    for (const auto& video : library.allVideos())
        signs << video.sign;
    return signs;
}

/// The name, size, kind and contents of what lies where the library belongs.
QString describe(const QString& path)
{
    struct stat file {};
    if (lstat(path.toUtf8().constData(), &file) != 0)
        return u"nothing"_s;
    return u"%1 %2 %3"_s.arg(file.st_mode)
        .arg(file.st_size)
        .arg(S_ISREG(file.st_mode) ? qHash(TemporaryHome::contents(path)) : 0);
}

using Act = std::function<void(const QString& file)>;
Act write(const QByteArray& contents)
{
    return [contents](const QString& file) { TemporaryHome::writeFile(file, contents); };
}

void emptyTable(const QString& file)
{
    VideoRows::execute(file, u"create table t (a); drop table t"_s);
}

void overwrite(const QString& file, const QByteArray& contents)
{
    QFile target(file); // the same one, as a copying program would
    if (!target.open(QIODevice::WriteOnly) || target.write(contents) < 0)
        qFatal("Cannot write %s.", qUtf8Printable(file));
}

} // namespace

class LocalVideoDBManagerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rows_areReadColumnByColumnInTableOrder()
    {
        const Fixture fixture;
        const auto b = VideoRows::row(u"b"_s, fileUrl);
        const auto a = VideoRows::row(u"a"_s, u"file:///videos/%C3%BC.mp4"_s);
        VideoRows::createTable(fixture.file);
        VideoRows::insert(fixture.file, {b, a});

        const auto library = fixture.open();

        QVERIFY(library->allVideos() == (std::deque{b, a}));
        QVERIFY(library->video(u"a"_s) == a);
        QVERIFY(!library->video(u"unknown"_s));
        QVERIFY(library->lastReading() == Reading::Complete);
    }

    void oddTables_giveZeroAndEmpty()
    {
        const Fixture fixture;
        // Columns missing, others in between, another order, another case; NULLs; a number
        // beyond 32 bits.
        VideoRows::execute(fixture.file,
            u"create table LocalVideos (extra text, SIGN text, size int, title text, url text);"
            "insert into LocalVideos values ('x', 's', 4294967298, null, null)"_s);

        const auto videos = fixture.open()->allVideos();

        QCOMPARE(videos.size(), std::size_t{1});
        QCOMPARE(videos[0].sign, u"s"_s);
        QCOMPARE(videos[0].size, 2);
        QCOMPARE(videos[0].title, QString());
        QCOMPARE(videos[0].upcount, 0);
    }

    void deleteVideo_deletesTheRowAndSaysSo()
    {
        const Fixture fixture;
        const auto oddSign = u"a'; drop table LocalVideos; --"_s;
        makeLibrary(fixture.file, {oddSign, u"b"_s});
        CapturedOutput output(STDOUT_FILENO);

        const auto library = fixture.open();
        library->deleteVideo(oddSign);
        library->deleteVideo(u"unknown"_s);

        QCOMPARE(output.text(),
            fixture.file.toUtf8() +
                "\ndelete a'; drop table LocalVideos; -- true\ndelete unknown true\n");
        QCOMPARE(VideoRows::signs(fixture.file), QStringList{u"b"_s});
    }

    void libraryThatCannotBeRead_isLeftAloneAndReadOnceItIsPutRight_data()
    {
        QTest::addColumn<Act>("make");
        QTest::addColumn<bool>("opens");
        const auto row = [](const char* name, const Act& make, bool opens) {
            QTest::newRow(name) << make << opens;
        };
        row("not a database", write(QByteArray("I am a shopping list.\n").repeated(100)), true);
        row("cut off", write(QByteArray("SQLite format 3\0\x10\x00\x01\x01\x00", 21)), true);
        row(
            "another program's table",
            [](const QString& file) { VideoRows::execute(file, u"create table t (a)"_s); },
            true);
        row(
            "folder", [](const QString& file) { QDir().mkpath(file); }, false);
        row(
            "pipe", [](const QString& file) { mkfifo(file.toUtf8().constData(), 0600); }, false);
        row(
            "link to a drive that is away",
            [](const QString& file) { QFile::link(u"on-the-drive.db"_s, file); },
            false);
    }

    void libraryThatCannotBeRead_isLeftAloneAndReadOnceItIsPutRight()
    {
        QFETCH(Act, make);
        QFETCH(bool, opens);
        const Fixture fixture;
        makeLibrary(fixture.seed, {u"seeded"_s});
        fixture.info.applicationSupportDirectory(); // makes the folder
        make(fixture.file);
        const auto before = describe(fixture.file);
        CapturedOutput output(STDOUT_FILENO);
        CapturedOutput errors(STDERR_FILENO);

        const auto library = fixture.open();
        QVERIFY(library->allVideos().empty());
        QVERIFY(library->lastReading() == Reading::Failed);
        QVERIFY(!library->video(u"a"_s));
        library->deleteVideo(u"a"_s);

        QCOMPARE(output.text(),
            fixture.file.toUtf8() + (opens ? "\n" : "\ndb open failure\n") + "delete a false\n");
        QCOMPARE(errors.text().count('\n'), opens ? 1 : 0);
        QCOMPARE(describe(fixture.file), before);
        QVERIFY(!QFile::exists(QFileInfo(fixture.file).path() + u"/on-the-drive.db"_s));

        QDir().rmdir(fixture.file);
        QFile::remove(fixture.file);
        makeLibrary(fixture.file, {u"new"_s});
        QCOMPARE(signs(*library), QStringList{u"new"_s});
        QVERIFY(library->lastReading() == Reading::Complete);
    }

    void fileThatBecomesAnother_isReadAnew_data()
    {
        QTest::addColumn<Act>("change");
        const auto row = [](const char* name, const Act& change) { QTest::newRow(name) << change; };
        row("replaced", [](const QString& file) {
            makeLibrary(file + u".new"_s, {u"y"_s});
            rename((file + u".new"_s).toUtf8().constData(), file.toUtf8().constData());
        });
        row("deleted and made again", [](const QString& file) {
            QFile::remove(file);
            makeLibrary(file, {u"y"_s});
        });
        row("copied over", [](const QString& file) { // as large and as often written as the first
            makeLibrary(file + u".new"_s, {u"y"_s});
            overwrite(file, TemporaryHome::contents(file + u".new"_s));
        });
        row("deleted", [](const QString& file) { QFile::remove(file); });
        row("emptied", [](const QString& file) { overwrite(file, {}); });
    }

    void fileThatBecomesAnother_isReadAnew()
    {
        QFETCH(Act, change);
        const Fixture fixture;
        makeLibrary(fixture.seed, {u"y"_s});
        makeLibrary(fixture.file, {u"x"_s});
        const auto library = fixture.open();
        QCOMPARE(signs(*library), QStringList{u"x"_s});

        change(fixture.file);

        QCOMPARE(signs(*library), QStringList{u"y"_s});
        library->deleteVideo(u"y"_s);
        QCOMPARE(VideoRows::signs(fixture.file), QStringList());
    }

    void libraryWithoutATable_isSeededOnce_data()
    {
        QTest::addColumn<Act>("make");
        QTest::newRow("missing") << Act([](const QString&) {});
        QTest::newRow("empty") << write("");
        QTest::newRow("with its table dropped") << Act(emptyTable);
    }

    void libraryWithoutATable_isSeededOnce()
    {
        QFETCH(Act, make);
        const Fixture fixture;
        makeLibrary(fixture.seed, {u"b"_s, u"a"_s});
        QFile::setPermissions(fixture.seed, QFile::ReadOwner);
        make(fixture.file);
        const bool isMissing = !QFile::exists(fixture.file);

        QCOMPARE(signs(*fixture.open()), (QStringList{u"b"_s, u"a"_s}));
        fixture.open()->deleteVideo(u"a"_s);
        QCOMPARE(signs(*fixture.open()), QStringList{u"b"_s});
        if (isMissing) {
            QVERIFY(!(QFile::permissions(fixture.file) &
                      (QFile::ReadGroup | QFile::ReadOther | QFile::WriteOther)));
        }
    }

    void fullDisk_leavesNothingHalfMade()
    {
        const Fixture fixture;
        makeLibrary(fixture.seed, QStringList(100, u"a"_s));
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        const rlimit fewPages{8192, limit.rlim_max};
        CapturedOutput output(STDOUT_FILENO);

        setrlimit(RLIMIT_FSIZE, &fewPages);
        const auto library = fixture.open();
        const auto found = signs(*library);
        setrlimit(RLIMIT_FSIZE, &limit);

        QVERIFY(found.isEmpty());
        QCOMPARE(output.text().count('\n'), 2); // the reason, the path
        QCOMPARE(QFileInfo(fixture.file).size(), 0);
        QCOMPARE(signs(*library).size(), 100);
    }

    void lockedLibrary_isBusyAndNotWaitedFor_data()
    {
        QTest::addColumn<bool>("hasTable");
        QTest::newRow("with a table") << true;
        QTest::newRow("whose table is just being made") << false;
    }

    void lockedLibrary_isBusyAndNotWaitedFor()
    {
        QFETCH(bool, hasTable);
        const Fixture fixture;
        makeLibrary(fixture.seed, {u"seeded"_s});
        if (hasTable)
            makeLibrary(fixture.file, {u"a"_s});
        else
            emptyTable(fixture.file);
        CapturedOutput output(STDOUT_FILENO);
        std::optional<VideoRows::Writer> writer(fixture.file);
        const auto library = fixture.open();

        // The shortest of some, because the machine may be busy with something else.
        auto shortest = std::numeric_limits<qint64>::max();
        QElapsedTimer time;
        for (int i = 0; i < 5; ++i) {
            time.start();
            QVERIFY(library->allVideos().empty());
            shortest = std::min(shortest, time.elapsed());
            QVERIFY(library->lastReading() == Reading::Busy);
        }
        QVERIFY(shortest < 50);
        library->deleteVideo(u"a"_s);
        writer.reset();

        QCOMPARE(output.text(), fixture.file.toUtf8() + "\ndelete a false\n");
        if (hasTable)
            QCOMPARE(signs(*library), QStringList{u"a"_s});
    }

    void urls_areMadeOfWhatRowsHold_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("localFile"); // empty where it is none
        const auto row = [](const char* name, const QString& text, const QString& localFile) {
            QTest::newRow(name) << text << localFile;
        };
        row("file URL", u"file:///v/%C3%BC%23.mp4"_s, u"/v/ü#.mp4"_s);
        row("of this machine", u"file://localhost/v/a.mp4"_s, u"/v/a.mp4"_s);
        row("plain path", u"/v/50% #1?.mp4"_s, u"/v/50% #1?.mp4"_s);
        row("of the web", u"https://example.org/a.mp4"_s, {});
        row("nothing", {}, {});
    }

    void urls_areMadeOfWhatRowsHold()
    {
        QFETCH(QString, text);
        QFETCH(QString, localFile);
        QCOMPARE(videoUrl(text).value_or(QUrl()).toLocalFile(), localFile);
        QCOMPARE(videoUrl(text).has_value(), !text.isEmpty());
        QVERIFY(
            !videoFileExists(QUrl(u"https://example.org"_s + QCoreApplication::arguments()[0])));
    }
};

QTEST_GUILESS_MAIN(LocalVideoDBManagerTest)
#include "LocalVideoDBManagerTest.moc"
