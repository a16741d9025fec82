#include "library/LocalVideoDBManager.h"

#include "library/VideoUrl.h"
#include "support/CapturedOutput.h"
#include "support/TemporaryHome.h"
#include "support/VideoRows.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>

#include <csignal>
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

QStringList signs(LocalVideoDBManager& library)
{
    QStringList signs;
    for (const auto& video : library.allVideos())
        signs << video.sign;
    return signs;
}

struct Fixture {
    std::unique_ptr<LocalVideoDBManager> open() const
    {
        return std::make_unique<LocalVideoDBManager>(info, bundle);
    }

    TemporaryHome home;
    Bundle bundle{home.path()};
    AppInfo info{bundle};
    QString seed = home.path() + u"/Fendix.db"_s;
    QString file = home.databaseFile();
};

using Act = void (*)(const QString&);

/// What people, programs and full disks do to the library.
const Act dropTable = [](const QString& file) {
    VideoRows::execute(file, u"create table t (a); drop table t"_s);
};
const Act writeList = [](const QString& file) {
    TemporaryHome::writeFile(file, QByteArray("I am a shopping list.\n").repeated(100));
};
const Act cutOff = [](const QString& file) {
    TemporaryHome::writeFile(file, QByteArray("SQLite format 3\0\x10\x00\x01\x01\x00", 21));
};
const Act makeLink = [](const QString& file) {
    QFile::link(u"on-a-drive-that-is-away.db"_s, file);
};
const Act makeFolder = [](const QString& file) { QDir().mkpath(file); };
const Act makePipe = [](const QString& file) { mkfifo(file.toUtf8().constData(), 0600); };
const Act deleteFile = [](const QString& file) { QFile::remove(file); };
const Act empty = [](const QString& file) { QFile::resize(file, 0); };
const Act addOtherTable = [](const QString& file) {
    VideoRows::execute(file, u"create table t (a)"_s);
};
const Act replace = [](const QString& file) {
    makeLibrary(file + u".new"_s, {u"y"_s});
    rename((file + u".new"_s).toUtf8().constData(), file.toUtf8().constData());
};
const Act copyOver = [](const QString& file) {
    makeLibrary(file + u".new"_s, {u"y"_s}); // as large and as often written as the other
    QFile target(file);
    QVERIFY(target.open(QIODevice::WriteOnly));
    target.write(TemporaryHome::contents(file + u".new"_s));
};

} // namespace

Q_DECLARE_METATYPE(Act)

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
        QTest::newRow("not a database") << writeList << true;
        QTest::newRow("cut off") << cutOff << true;
        QTest::newRow("another program's") << addOtherTable << true;
        QTest::newRow("folder") << makeFolder << false;
        QTest::newRow("pipe") << makePipe << false;
        QTest::newRow("link to a drive that is away") << makeLink << false;
    }

    void libraryThatCannotBeRead_isLeftAloneAndReadOnceItIsPutRight()
    {
        QFETCH(Act, make);
        QFETCH(bool, opens);
        const Fixture fixture;
        makeLibrary(fixture.seed, {u"seeded"_s});
        QDir folder(fixture.info.applicationSupportDirectory().toLocalFile());
        make(fixture.file);
        const auto before = QFileInfo(fixture.file).isFile() // a pipe would be waited for
                                ? TemporaryHome::contents(fixture.file)
                                : QByteArray();
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
        QCOMPARE(
            folder.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size(), 1);
        if (!before.isEmpty())
            QVERIFY(TemporaryHome::contents(fixture.file) == before);

        folder.rmdir(fixture.file);
        deleteFile(fixture.file);
        makeLibrary(fixture.file, {u"new"_s});
        QCOMPARE(signs(*library), QStringList{u"new"_s});
        QVERIFY(library->lastReading() == Reading::Complete);
    }

    void fileThatBecomesAnother_isReadAnew_data()
    {
        QTest::addColumn<Act>("change");
        QTest::newRow("replaced") << replace;
        QTest::newRow("copied over") << copyOver;
        QTest::newRow("deleted") << deleteFile;
        QTest::newRow("emptied") << empty;
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
        QTest::newRow("missing") << deleteFile;
        QTest::newRow("empty") << empty;
        QTest::newRow("with its table dropped") << dropTable;
    }

    void libraryWithoutATable_isSeededOnce()
    {
        QFETCH(Act, make);
        const Fixture fixture;
        makeLibrary(fixture.seed, {u"b"_s, u"a"_s});
        QFile::setPermissions(fixture.seed, QFile::ReadOwner);
        fixture.info.applicationSupportDirectory(); // makes the folder
        make(fixture.file);
        const bool isMissing = !QFile::exists(fixture.file);

        QCOMPARE(signs(*fixture.open()), (QStringList{u"b"_s, u"a"_s}));
        fixture.open()->deleteVideo(u"a"_s);
        QCOMPARE(signs(*fixture.open()), QStringList{u"b"_s});
        if (isMissing)
            QVERIFY(!(QFile::permissions(fixture.file) & (QFile::ReadGroup | QFile::ReadOther)));
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
        QTest::addColumn<Act>("make");
        QTest::newRow("with a table") << replace;
        QTest::newRow("whose table is just being made") << dropTable;
    }

    void lockedLibrary_isBusyAndNotWaitedFor()
    {
        QFETCH(Act, make);
        const Fixture fixture;
        makeLibrary(fixture.seed, {u"y"_s});
        fixture.info.applicationSupportDirectory(); // makes the folder
        make(fixture.file);
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
        library->deleteVideo(u"y"_s);
        writer.reset();

        QCOMPARE(output.text(), fixture.file.toUtf8() + "\ndelete y false\n");
        QCOMPARE(signs(*library), QStringList{u"y"_s});
    }

    void urls_areMadeOfWhatRowsHold()
    {
        const auto localFile = [](const QString& text) { return videoUrl(text)->toLocalFile(); };
        QCOMPARE(localFile(u"file:///v/%C3%BC%23.mp4"_s), u"/v/ü#.mp4"_s);
        QCOMPARE(localFile(u"file://localhost/v/a.mp4"_s), u"/v/a.mp4"_s);
        QCOMPARE(localFile(u"/v/50% #1?.mp4"_s), u"/v/50% #1?.mp4"_s);
        QCOMPARE(localFile(u"https://example.org/a.mp4"_s), QString());
        QVERIFY(!videoUrl({}));
    }
};

QTEST_GUILESS_MAIN(LocalVideoDBManagerTest)
#include "LocalVideoDBManagerTest.moc"
