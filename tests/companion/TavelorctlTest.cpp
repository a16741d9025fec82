#include "support/TemporaryHome.h"
#include "support/TestVideos.h"
#include "support/VideoRows.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <QUrl>

#include <sys/stat.h>

namespace {

struct Result {
    int status;
    QString output;
    QString errors;

    QJsonDocument json() const { return QJsonDocument::fromJson(output.toUtf8()); }
};

/// The real program, without a session bus.
Result tavelorctl(const QStringList& arguments, const QString& directory = {})
{
    QProcess process;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(
        QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nowhere"));
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(directory);
    process.start(QStringLiteral(TAVELORCTL), arguments);
    process.waitForFinished();
    return {process.exitCode(),
        QString::fromUtf8(process.readAllStandardOutput()),
        QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

class TavelorctlTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_videos = m_directory.filePath(QStringLiteral("videos"));
        QDir().mkpath(m_videos);
        m_red = m_videos + QStringLiteral("/ein Film (ü) #1 100%.mp4");
        m_green = m_videos + QStringLiteral("/grün.mp4");
        TestVideos::makePlain(m_red, QStringLiteral("red"), 2);
        TestVideos::makePlain(m_green, QStringLiteral("green"), 1);
    }

    void firstUse_startsFromTheSeed()
    {
        const TemporaryHome home;

        const auto rows =
            tavelorctl({QStringLiteral("list"), QStringLiteral("--json")}).json().array();

        QCOMPARE(rows.size(), 1);
        const auto sample = rows[0].toObject();
        QVERIFY(QFile::exists(sample[QStringLiteral("path")].toString()));
        QVERIFY(sample[QStringLiteral("width")].toInt() >= 1920);
        QVERIFY(sample[QStringLiteral("bytes")].toInt() < 2'000'000);
    }

    void import_addsAFileOnceWithItsFacts()
    {
        const TemporaryHome home;

        const auto first = tavelorctl({QStringLiteral("import"), m_red});
        QCOMPARE(first.status, 0);
        QCOMPARE(first.errors, QString());
        QVERIFY(first.output.contains(u"added  ein Film (ü) #1 100% (1280×720, 0:02)"));
        const auto again = tavelorctl({QStringLiteral("import"), m_red, m_red});
        QCOMPARE(again.status, 0);
        QCOMPARE(again.output.count(QStringLiteral("already there")), 2);

        const auto rows =
            tavelorctl({QStringLiteral("list"), QStringLiteral("--json")}).json().array();
        QCOMPARE(rows.size(), 2);
        const auto row = rows[1].toObject();
        QCOMPARE(row[QStringLiteral("path")].toString(), m_red);
        QCOMPARE(row[QStringLiteral("seconds")].toInt(), 2);
        QCOMPARE(row[QStringLiteral("bytes")].toInteger(), QFileInfo(m_red).size());
        QCOMPARE(home.suiteValue(QStringLiteral("alreadyImportVideo")), QStringLiteral("true"));
    }

    void import_ofAFolder_takesItsVideos()
    {
        const TemporaryHome home;
        TemporaryHome::writeFile(m_videos + QStringLiteral("/notes.txt"), "no video");

        const auto result =
            tavelorctl({QStringLiteral("import"), QStringLiteral("videos")}, m_directory.path());

        QCOMPARE(result.status, 0);
        QCOMPARE(result.output.count(QStringLiteral("added")), 2);
    }

    void import_ofAMovedFile_followsIt()
    {
        const TemporaryHome home;
        const auto before = home.path() + QStringLiteral("/before.mp4");
        const auto after = home.path() + QStringLiteral("/after.mp4");
        QFile::copy(m_red, before);
        tavelorctl({QStringLiteral("import"), before});
        QFile::rename(before, after);

        const auto result = tavelorctl({QStringLiteral("import"), after});

        QVERIFY(result.output.contains(u"moved"));
        QVERIFY(tavelorctl({QStringLiteral("list")}).output.contains(after));
        QCOMPARE(VideoRows::signs(home.databaseFile()).size(), 2);
    }

    void import_goesOnAfterABadFile()
    {
        const TemporaryHome home;
        const auto text = home.path() + QStringLiteral("/text.mp4");
        TemporaryHome::writeFile(text, QByteArray("I am not a video.\n").repeated(1000));
        const auto cut = home.path() + QStringLiteral("/cut.mp4");
        TemporaryHome::writeFile(cut, TemporaryHome::contents(m_red).left(1000));
        const auto pipe = home.path() + QStringLiteral("/pipe.mp4");
        QCOMPARE(mkfifo(pipe.toUtf8().constData(), 0600), 0);
        const auto sound = home.path() + QStringLiteral("/sound.wav");
        TestVideos::make(sound,
            {QStringLiteral("-f"),
                QStringLiteral("lavfi"),
                QStringLiteral("-i"),
                QStringLiteral("sine=d=1")});

        const auto result = tavelorctl({QStringLiteral("import"),
            text,
            cut,
            pipe,
            sound,
            QStringLiteral("/nowhere/film.mp4"),
            m_red});

        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors.count(QRegularExpression(
                     QStringLiteral("^tavelorctl: .+: .+$"), QRegularExpression::MultilineOption)),
            5);
        QVERIFY(result.errors.contains(u"tavelorctl: /nowhere/film.mp4: no such file"));
        QCOMPARE(result.output.count(QStringLiteral("added")), 1);
    }

    void choose_takesAnUnambiguousBeginning()
    {
        const TemporaryHome home;
        VideoRows::createTable(home.databaseFile());
        for (const auto* sign : {"abc1", "abc2", "abc", "x1"})
            VideoRows::insert(home.databaseFile(),
                {VideoRows::row(QLatin1String(sign), QStringLiteral("file:///a.mp4"))});
        const auto choose = [&](const char* sign) {
            return tavelorctl({QStringLiteral("choose"), QLatin1String(sign)});
        };

        QCOMPARE(choose("x").status, 0);
        QCOMPARE(home.suiteValue(QStringLiteral("CurrentVideoSign")), QStringLiteral("x1"));
        QCOMPARE(choose("abc").status, 0); // whole signs come first
        QCOMPARE(home.suiteValue(QStringLiteral("CurrentVideoSign")), QStringLiteral("abc"));
        QVERIFY(tavelorctl({QStringLiteral("list")}).output.contains(u"* abc "));
        QCOMPARE(choose("ab").errors,
            QStringLiteral("tavelorctl: ab: 3 videos' signs begin like this\n"));
        QCOMPARE(choose("y").status, 1);
        QCOMPARE(home.suiteValue(QStringLiteral("CurrentVideoSign")), QStringLiteral("abc"));
    }

    void choosingTheSameVideoAgain_switchesOn()
    {
        const TemporaryHome home;
        tavelorctl({QStringLiteral("import"), m_green});
        const auto sign = VideoRows::signs(home.databaseFile()).constLast();
        tavelorctl({QStringLiteral("choose"), sign});
        home.writeSuiteValue(QStringLiteral("IsOpenPlayer"), QStringLiteral("false"));
        home.writeSuiteValue(QStringLiteral("isPlaying"), QStringLiteral("false"));

        tavelorctl({QStringLiteral("choose"), sign});

        const auto status =
            tavelorctl({QStringLiteral("status"), QStringLiteral("--json")}).json().object();
        QVERIFY(status[QStringLiteral("open")].toBool());
        QVERIFY(status[QStringLiteral("playing")].toBool());
        QVERIFY(!status[QStringLiteral("running")].toBool());
        QCOMPARE(status[QStringLiteral("title")].toString(), QStringLiteral("grün"));
    }

    void wrongUsage_exitsWithTwo_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("nothing") << QStringList{};
        QTest::newRow("unknown command") << QStringList{QStringLiteral("dance")};
        QTest::newRow("nothing to import") << QStringList{QStringLiteral("import")};
        QTest::newRow("too much") << QStringList{QStringLiteral("status"), QStringLiteral("now")};
        QTest::newRow("unknown option")
            << QStringList{QStringLiteral("list"), QStringLiteral("--xml")};
    }

    void wrongUsage_exitsWithTwo()
    {
        QFETCH(QStringList, arguments);
        const TemporaryHome home;
        const auto result = tavelorctl(arguments);
        QCOMPARE(result.status, 2);
        QVERIFY(result.errors.contains(u"usage: tavelorctl"));
        QVERIFY(result.output.isEmpty());
        QVERIFY(!QFile::exists(home.container()));
    }

    void brokenLibrary_isAnErrorAndStaysAsItIs()
    {
        const TemporaryHome home;
        const auto text = QByteArray("I am a shopping list.\n").repeated(100);
        TemporaryHome::writeFile(home.databaseFile(), text);

        const auto result = tavelorctl({QStringLiteral("import"), m_red});

        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors,
            QStringLiteral("tavelorctl: %1: file is not a database\n").arg(home.databaseFile()));
        QCOMPARE(TemporaryHome::contents(home.databaseFile()), text);
    }

private:
    QTemporaryDir m_directory;
    QString m_videos;
    QString m_red;
    QString m_green;
};

QTEST_GUILESS_MAIN(TavelorctlTest)
#include "TavelorctlTest.moc"
