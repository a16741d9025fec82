#include "library/LocalVideoDBManager.h"

#include "support/TemporaryHome.h"
#include "support/VideoRows.h"

#include <QTest>

#include <cstdio>
#include <optional>
#include <unistd.h>

namespace {

/// What is written to standard output while it lives.
class CapturedOutput {
public:
    CapturedOutput() : m_file(std::tmpfile()), m_saved(dup(STDOUT_FILENO))
    {
        std::fflush(stdout);
        dup2(fileno(m_file), STDOUT_FILENO);
    }
    ~CapturedOutput()
    {
        restore();
        std::fclose(m_file);
    }
    QByteArray text()
    {
        restore();
        std::rewind(m_file);
        QByteArray text(4096, '\0');
        text.resize(static_cast<qsizetype>(std::fread(text.data(), 1, 4096, m_file)));
        return text;
    }

private:
    void restore()
    {
        std::fflush(stdout);
        if (m_saved >= 0) {
            dup2(m_saved, STDOUT_FILENO);
            close(m_saved);
            m_saved = -1;
        }
    }

    std::FILE* m_file;
    int m_saved;
};

struct Fixture {
    TemporaryHome home;
    Bundle bundle{home.path()};
    AppInfo info{bundle};

    std::unique_ptr<LocalVideoDBManager> open() const
    {
        return std::make_unique<LocalVideoDBManager>(info, bundle);
    }
};

const auto fileUrl = QStringLiteral("file:///videos/a.mp4");

} // namespace

class LocalVideoDBManagerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rows_areReadColumnByColumnInTableOrder()
    {
        const Fixture fixture;
        const auto b = VideoRows::row(QStringLiteral("b"), fileUrl);
        const auto a =
            VideoRows::row(QStringLiteral("a"), QStringLiteral("file:///videos/%C3%BC.mp4"));
        VideoRows::createTable(fixture.home.databaseFile());
        VideoRows::insert(fixture.home.databaseFile(), {b, a});

        const auto library = fixture.open();

        QVERIFY(library->allVideos() == (std::deque{b, a}));
        QVERIFY(library->video(QStringLiteral("a")) == a);
        QVERIFY(!library->video(QStringLiteral("unknown")));
    }

    void oddTables_giveZeroAndEmpty()
    {
        const Fixture fixture;
        const auto file = fixture.home.databaseFile();
        // Columns missing, others in between, another order, another case; NULLs; a number
        // beyond 32 bits.
        VideoRows::execute(file,
            QStringLiteral(
                "create table LocalVideos (extra text, SIGN text, size int, title text, url text);"
                "insert into LocalVideos values ('x', 's', 4294967298, null, null)"));

        const auto videos = fixture.open()->allVideos();

        QCOMPARE(videos.size(), std::size_t{1});
        QCOMPARE(videos[0].sign, QStringLiteral("s"));
        QCOMPARE(videos[0].size, 2);
        QCOMPARE(videos[0].title, QString());
        QCOMPARE(videos[0].url, QString());
        QCOMPARE(videos[0].upcount, 0);
    }

    void deleteVideo_deletesTheRowAndSaysSo()
    {
        const Fixture fixture;
        VideoRows::createTable(fixture.home.databaseFile());
        VideoRows::insert(fixture.home.databaseFile(),
            {VideoRows::row(QStringLiteral("a'; drop table LocalVideos; --"), fileUrl),
                VideoRows::row(QStringLiteral("b"), fileUrl)});
        CapturedOutput output;

        const auto library = fixture.open();
        library->deleteVideo(QStringLiteral("a'; drop table LocalVideos; --"));
        library->deleteVideo(QStringLiteral("unknown"));

        QCOMPARE(output.text(),
            fixture.home.databaseFile().toUtf8() +
                "\ndelete a'; drop table LocalVideos; -- true\ndelete unknown true\n");
        QCOMPARE(VideoRows::signs(fixture.home.databaseFile()), QStringList{QStringLiteral("b")});
    }

    void brokenLibraries_areEmptyAndStayUsable_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::newRow("empty file") << QByteArray("");
        QTest::newRow("not a database") << QByteArray("I am a shopping list.\n").repeated(100);
        QTest::newRow("cut off") << QByteArray("SQLite format 3\0\x10\x00\x01\x01\x00", 21);
    }

    void brokenLibraries_areEmptyAndStayUsable()
    {
        QFETCH(QByteArray, contents);
        const Fixture fixture;
        TemporaryHome::writeFile(fixture.home.databaseFile(), contents);
        CapturedOutput output;

        const auto library = fixture.open();
        QVERIFY(library->allVideos().empty());
        QVERIFY(!library->video(QStringLiteral("a")));
        QVERIFY(library->lastReading() == LocalVideoDBManager::Reading::Failed);
        library->deleteVideo(QStringLiteral("a"));

        QVERIFY(output.text().endsWith("\ndelete a false\n"));
        QCOMPARE(TemporaryHome::contents(fixture.home.databaseFile()), contents);
    }

    void databaseThatCannotBeOpened_isReportedOnce()
    {
        const Fixture fixture;
        TemporaryHome::writeFile(fixture.home.container(), "a file where the folder belongs");
        CapturedOutput output;

        const auto library = fixture.open();
        QVERIFY(library->allVideos().empty());
        library->deleteVideo(QStringLiteral("a"));

        QCOMPARE(output.text(),
            fixture.home.databaseFile().toUtf8() + "\ndb open failure\ndelete a false\n");
    }

    void lockedLibrary_saysThatItIsBusy()
    {
        const Fixture fixture;
        const auto file = fixture.home.databaseFile();
        VideoRows::createTable(file);
        VideoRows::insert(file, {VideoRows::row(QStringLiteral("a"), fileUrl)});
        const auto library = fixture.open();
        std::optional<VideoRows::Writer> writer(file);

        QVERIFY(library->allVideos().empty());
        QVERIFY(library->lastReading() == LocalVideoDBManager::Reading::Busy);

        writer.reset();
        QCOMPARE(library->allVideos().size(), std::size_t{1});
        QVERIFY(library->lastReading() == LocalVideoDBManager::Reading::Complete);
    }

    void missingFile_isSeededFromTheBundleOnce()
    {
        const Fixture fixture;
        const auto seed = fixture.home.path() + QStringLiteral("/Fendix.db");
        VideoRows::createTable(seed);
        VideoRows::insert(seed, {VideoRows::row(QStringLiteral("seeded"), fileUrl)});
        QFile::setPermissions(seed, QFile::ReadOwner);

        LocalVideoDBManager::makeDatabase(fixture.info, fixture.bundle);
        const auto library = fixture.open();
        QCOMPARE(library->allVideos().size(), std::size_t{1});
        library->deleteVideo(QStringLiteral("seeded"));
        LocalVideoDBManager::makeDatabase(fixture.info, fixture.bundle);

        QCOMPARE(VideoRows::signs(fixture.home.databaseFile()), QStringList());
    }
};

QTEST_GUILESS_MAIN(LocalVideoDBManagerTest)
#include "LocalVideoDBManagerTest.moc"
