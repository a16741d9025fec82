#include "support/TemporaryHome.h"
#include "support/TestVideos.h"
#include "support/VideoRows.h"

#include <QJsonDocument>
#include <QLockFile>
#include <QProcess>
#include <QTest>
#include <QUrl>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

struct Result {
    int status;
    QString output;
    QString errors;
};

/// The real program, without a session bus, on a disk that is as full as one likes.
Result tavelorctl(const QString& command, const QStringList& more = {}, bool isDiskFull = false)
{
    QProcess process;
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    const auto limit = isDiskFull ? u"trap '' XFSZ; ulimit -f 0; "_s : QString();
    process.start(u"/bin/sh"_s,
        QStringList{u"-c"_s, limit + u"exec \"$0\" \"$@\""_s, QStringLiteral(TAVELORCTL)} +
            command.split(u' ', Qt::SkipEmptyParts) + more);
    process.waitForFinished();
    return {process.exitCode(),
        QString::fromUtf8(process.readAllStandardOutput()),
        QString::fromUtf8(process.readAllStandardError())};
}

QJsonDocument json(const QString& command)
{
    return QJsonDocument::fromJson(tavelorctl(command + u" --json"_s).output.toUtf8());
}

} // namespace

class TavelorctlTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TemporaryHome::writeFile(m_videos + u"/notes.txt"_s, "no video");
        TestVideos::makePlain(m_red, u"red"_s, 2);
    }

    void init() { m_home = std::make_unique<TemporaryHome>(); }
    void cleanup() { m_home.reset(); }

    void import_addsAFileOnceWithItsFactsToTheSeed()
    {
        const auto first = tavelorctl(u"import"_s, {m_red});
        QCOMPARE(first.status, 0);
        QCOMPARE(first.errors, QString());
        QVERIFY(first.output.contains(u"added  ein Film (ü) #1 100% (1280×720, 0:02)"));
        QCOMPARE(tavelorctl(u"import"_s, {m_red, m_red}).output.count(u"already there"_s), 2);

        const auto rows = json(u"list"_s);
        QVERIFY(QFile::exists(rows[0][u"path"].toString()) && rows[2].isUndefined());
        QVERIFY(rows[0][u"width"].toInt() >= 1920 && rows[0][u"bytes"].toInt() < 2'000'000);
        QCOMPARE(rows[1][u"path"].toString(), m_red);
        QCOMPARE(rows[1][u"seconds"].toInt(), 2);
        QCOMPARE(rows[1][u"bytes"].toInteger(), QFileInfo(m_red).size());
        QCOMPARE(m_home->suiteValue(u"alreadyImportVideo"_s), u"true"_s);
    }

    void import_givesTheSizeThatIsSeen()
    {
        struct Video {
            QString shape, angle, size, ratio;
        };
        for (const auto& video : {Video{u"1"_s, u"270"_s, u"240×320"_s, u"3:4"_s},
                 {u"1"_s, u"180"_s, u"320×240"_s, u"4:3"_s},
                 {u"4/3"_s, u"0"_s, u"427×240"_s, u"427:240"_s},
                 {u"1/2"_s, u"90"_s, u"480×320"_s, u"3:2"_s}}) {
            const auto plain = m_home->path() + u"/plain.mp4"_s;
            const auto turned = m_home->path() + u'/' + video.angle + u".mp4"_s;
            TestVideos::make(plain,
                u"-f lavfi -i color=s=320x240:d=0.2,setsar=%1"_s.arg(video.shape).split(u' '));
            TestVideos::make(turned,
                u"-i %1 -c copy -metadata:s:v rotate=%2"_s.arg(plain, video.angle).split(u' '));

            const auto output = tavelorctl(u"import"_s, {turned}).output;

            QVERIFY2(output.contains(u'(' + video.size + u','), qUtf8Printable(output));
            VideoRows::execute(m_home->databaseFile(), u"update LocalVideos set sign = ratio"_s);
            QVERIFY(VideoRows::signs(m_home->databaseFile()).contains(video.ratio));
        }
    }

    void import_ofAMovedFile_followsIt()
    {
        const auto before = m_home->path() + u"/before.mp4"_s;
        const auto after = m_home->path() + u"/after.mp4"_s;
        QFile::copy(m_red, before);
        tavelorctl(u"import"_s, {before});
        QFile::rename(before, after);

        QVERIFY(tavelorctl(u"import"_s, {after}).output.contains(u"moved"));
        QVERIFY(tavelorctl(u"list"_s).output.contains(after));
        QCOMPARE(VideoRows::signs(m_home->databaseFile()).size(), 2);
    }

    void import_goesOnAfterABadFile()
    {
        const auto path = m_home->path() + u'/';
        TemporaryHome::writeFile(path + u"cut.mp4"_s, TemporaryHome::contents(m_red).left(1000));
        QCOMPARE(mkfifo((path + u"pipe"_s).toUtf8().constData(), 0600), 0);
        TestVideos::make(path + u"sound.wav"_s, u"-f lavfi -i sine=d=1"_s.split(u' '));

        const auto result = tavelorctl(u"import /nowhere/film.mp4"_s,
            {path + u"cut.mp4"_s, path + u"pipe"_s, path + u"sound.wav"_s, m_videos});

        QCOMPARE(result.status, 1);
        QVERIFY(result.errors.startsWith(u"tavelorctl: /nowhere/film.mp4: no such file"));
        for (const auto& line : result.errors.trimmed().split(u'\n'))
            QVERIFY(line.startsWith(u"tavelorctl: /") && line.count(u": "_s) == 2);
        QCOMPARE(result.errors.count(u'\n'), 4);
        QCOMPARE(result.output.count(u"added"_s), 1);
    }

    void choose_takesAnUnambiguousBeginning()
    {
        makeLibrary({u"abc1"_s, u"abc2"_s, u"abc"_s, u"x1"_s});

        tavelorctl(u"choose x"_s);
        QCOMPARE(m_home->suiteValue(u"CurrentVideoSign"_s), u"x1"_s);
        tavelorctl(u"choose abc"_s); // whole signs come first
        QVERIFY(tavelorctl(u"list"_s).output.contains(u"* abc "));
        QCOMPARE(tavelorctl(u"choose ab"_s).errors,
            u"tavelorctl: ab: 3 videos' signs begin like this\n"_s);
        QCOMPARE(tavelorctl(u"choose y"_s).status, 1);
        QCOMPARE(m_home->suiteValue(u"CurrentVideoSign"_s), u"abc"_s);
    }

    void choosingTheSameVideoAgain_switchesOnAndForgivesIt()
    {
        makeLibrary({u"abc"_s});
        TemporaryHome::writeFile(m_home->suiteFile(),
            "[General]\nCurrentVideoSign=abc\nIsOpenPlayer=false\nisPlaying=false\n");
        const auto record = m_home->container() + u"/Caches/opening.json"_s;
        TemporaryHome::writeFile(record, R"({"opening":"abc","suspects":["abc","x"]})");

        QCOMPARE(tavelorctl(u"choose abc"_s).status, 0);

        const auto status = json(u"status"_s);
        QVERIFY(status[u"open"].toBool() && status[u"playing"].toBool());
        QVERIFY(!status[u"running"].toBool() && status[u"title"] == u"title"_s);
        QCOMPARE(TemporaryHome::contents(record), R"({"opening":"abc","suspects":["x"]})");
    }

    void choiceThatIsNotStored_isAnError()
    {
        makeLibrary({u"abc"_s});
        for (const auto& why : {u"is locked by another program"_s,
                 u"its folder cannot be written"_s,
                 u"is not a settings file"_s}) {
            const QByteArray settings = why.contains(u"not a") ? "dear diary\n" : "[General]\n";
            TemporaryHome::writeFile(m_home->suiteFile(), settings);
            QLockFile lock(m_home->suiteFile() + u".lock"_s);
            QVERIFY(!why.contains(u"lock") || lock.tryLock());

            const auto result = tavelorctl(u"choose abc"_s, {}, why.contains(u"folder"));

            QCOMPARE(result.status, 1);
            QVERIFY(result.errors.endsWith(u"%1: %2\n"_s.arg(m_home->suiteFile(), why)));
            QCOMPARE(TemporaryHome::contents(m_home->suiteFile()), settings);
        }
    }

    void wrongUsage_exitsWithTwo()
    {
        for (const auto* command : {"", "dance", "import", "status now", "list --xml"}) {
            const auto result = tavelorctl(QLatin1String(command));
            QCOMPARE(result.status, 2);
            QVERIFY(result.errors.contains(u"usage: tavelorctl") && result.output.isEmpty());
            QVERIFY(!QFile::exists(m_home->container()));
        }
    }

    void brokenLibrary_isAnErrorAndStaysAsItIs()
    {
        const auto text = QByteArray("I am a shopping list.\n").repeated(100);
        TemporaryHome::writeFile(m_home->databaseFile(), text);

        const auto result = tavelorctl(u"import"_s, {m_red});

        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
            u"tavelorctl: %1: file is not a database\n"_s.arg(m_home->databaseFile()));
        QCOMPARE(TemporaryHome::contents(m_home->databaseFile()), text);
    }

private:
    void makeLibrary(const QStringList& signs) const
    {
        VideoRows::createTable(m_home->databaseFile());
        for (const auto& sign : signs)
            VideoRows::insert(m_home->databaseFile(), {VideoRows::row(sign, u"file:///a.mp4"_s)});
    }

    std::unique_ptr<TemporaryHome> m_home;
    QTemporaryDir m_directory;
    const QString m_videos = m_directory.filePath(u"videos"_s);
    const QString m_red = m_videos + u"/ein Film (ü) #1 100%.mp4"_s;
};

QTEST_GUILESS_MAIN(TavelorctlTest)
#include "TavelorctlTest.moc"
