#include "platform/PreferencesSuite.h"

#include "support/TemporaryHome.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLockFile>
#include <QSettings>
#include <QTest>
#include <QThread>

#include <atomic>
#include <sys/stat.h>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Overwrite = PreferencesSuite::Overwrite;

namespace {

const auto name = u"K7ZT3QW9RB.tavelor"_s;
const QByteArray wellText = "; mine\n[General]\nKept=1\nList=1, 2\n\n[Other]\nKept=2\n";

struct stat statusOf(const QString& path)
{
    struct stat status {};
    stat(QFile::encodeName(path).constData(), &status);
    return status;
}

/// As many editors do: the file stays, its text is taken away and written anew.
void saveInPlace(const QString& path, const QByteArray& text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("Cannot save %s.", qUtf8Printable(path));
}

} // namespace

class PreferencesSuiteTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home.reset(); // the new one has to be the later one
        m_home = std::make_unique<TemporaryHome>();
        m_folder = m_home->container() + u"/Preferences"_s;
        m_path = m_home->suiteFile();
        TemporaryHome::writeFile(m_path, wellText);
        m_suite = PreferencesSuite::open(name, m_folder);
    }

    void brokenFile_isNoNews_data()
    {
        QTest::addColumn<QByteArray>("text");
        for (const auto* kind : {"folder", "pipe", "link to nowhere", "link to itself", "gone"})
            QTest::newRow(kind) << QByteArray();
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("half a line") << QByteArray("[General]\nKept=1\nLis");
        QTest::newRow("half a value") << QByteArray("[General]\nKept=\"1\n");
        QTest::newRow("no last line's end") << QByteArray("[General]\nKept=1\nList=1");
        QTest::newRow("keys missing") << QByteArray("[General]\nKept=4\n");
        QTest::newRow("prose") << QByteArray("a = b\ndear diary\n");
        QTest::newRow("binary") << QByteArray("a=\0\n", 4);
        QTest::newRow("only comments") << QByteArray("; nothing\n\n");
        QTest::newRow("too long") << "a=" + QByteArray(2'000'000, 'a') + '\n';
    }

    void brokenFile_isNoNews()
    {
        QFETCH(QByteArray, text);
        const QByteArray kind = QTest::currentDataTag();
        if (!text.isNull())
            saveInPlace(m_path, text);
        else
            QFile::remove(m_path);
        if (kind == "folder")
            QDir().mkpath(m_path);
        else if (kind == "pipe")
            mkfifo(QFile::encodeName(m_path).constData(), S_IRUSR | S_IWUSR);
        else if (kind.startsWith("link"))
            QFile::link(kind == "link to itself" ? m_path : u"/nowhere"_s, m_path);
        const auto before = statusOf(m_path);

        m_suite->setInteger(u"Ours"_s, 3);
        QVERIFY(!m_suite->synchronize());

        QVERIFY(!m_suite->problem().isEmpty());
        QCOMPARE(m_suite->integer(u"Kept"_s), 1);
        QCOMPARE(m_suite->integer(u"Ours"_s), 3);
        QCOMPARE(statusOf(m_path).st_ino, before.st_ino);
        QVERIFY(text.isNull() || TemporaryHome::contents(m_path) == text);

        QVERIFY(kind == "folder" ? QDir().rmdir(m_path) : QFile::remove(m_path) || kind == "gone");
        TemporaryHome::writeFile(m_path, wellText);
        QVERIFY(m_suite->synchronize());
        QVERIFY(m_suite->problem().isEmpty());
        QCOMPARE(TemporaryHome::contents(m_path),
            QByteArray(wellText).replace("1, 2\n", "1, 2\nOurs=3\n"));
    }

    void brokenAtStart_defaultsNeverReplaceWhatComesBack()
    {
        TemporaryHome::writeFile(m_path, "dear diary\n");
        m_suite = PreferencesSuite::open(name, m_folder);
        m_suite->setInteger(u"Kept"_s, 9, Overwrite::Never);
        QVERIFY(!m_suite->synchronize() && !m_suite->isKnown());
        QCOMPARE(m_suite->integer(u"Kept"_s), 9);

        TemporaryHome::writeFile(m_path, wellText);
        QVERIFY(m_suite->synchronize() && m_suite->isKnown());
        QCOMPARE(m_suite->integer(u"Kept"_s), 1);
    }

    void fileThatAPersonEnds_isBelievedOnceItStaysSo()
    {
        saveInPlace(m_path, "[General]\nList=7"); // without a key, and the last line's end

        m_suite->synchronize();
        QVERIFY(m_suite->hasValue(u"Kept"_s));
        QTRY_VERIFY_WITH_TIMEOUT(m_suite->synchronize() && !m_suite->hasValue(u"Kept"_s), 900);
        QCOMPARE(m_suite->integer(u"List"_s), 7);
        m_suite->setInteger(u"Ours"_s, 3);
        m_suite->synchronize();
        QCOMPARE(TemporaryHome::contents(m_path), "[General]\nList=7\nOurs=3\n");
    }

    void fileOpenInAnEditor_isReadAndReplacedWhenItIsClosed()
    {
        QFile editor(m_path);
        QVERIFY(editor.open(QIODevice::WriteOnly | QIODevice::Append));
        QVERIFY(editor.write("[General]\nTheirs=5\n") > 0 && editor.flush());
        m_suite->setInteger(u"Ours"_s, 3);

        QVERIFY(!m_suite->synchronize());
        QVERIFY(!m_suite->hasValue(u"Theirs"_s));
        editor.close();
        QVERIFY(m_suite->synchronize());

        QCOMPARE(TemporaryHome::contents(m_path), wellText + "[General]\nTheirs=5\nOurs=3\n");
    }

    void lostFile_isWrittenAnewWithAllThatWasInIt()
    {
        QFile::remove(m_path);
        QElapsedTimer gone;
        gone.start();

        QTRY_COMPARE_WITH_TIMEOUT(
            (m_suite->synchronize(), TemporaryHome::contents(m_path)), wellText, 8000);
        QVERIFY(gone.elapsed() >= 4000);
    }

    void lockOfAnotherProcess_isNotWaitedFor()
    {
        QLockFile lock(m_path + u".lock"_s);
        QVERIFY(lock.tryLock());
        m_suite->setInteger(u"Kept"_s, 1);
        QVERIFY(m_suite->synchronize()); // what the file holds is not written again

        m_suite->setInteger(u"Kept"_s, 5);
        m_suite->setInteger(u"Ours"_s, 3, Overwrite::Never);
        QElapsedTimer waited;
        waited.start();

        QVERIFY(!m_suite->synchronize());
        QVERIFY(waited.elapsed() < 90); // 50 ms, on a busy machine
        QVERIFY(m_suite->problem().contains("locked"_L1));
        QCOMPARE(m_suite->integer(u"Kept"_s), 5);
        TemporaryHome::writeFile(m_path, QByteArray(wellText).replace("Kept=1", "Ours=4"));
        lock.unlock();
        QVERIFY(m_suite->synchronize());

        QCOMPARE(m_home->suiteValue(u"Kept"_s), u"5"_s);
        QCOMPARE(m_suite->integer(u"Ours"_s), 4);
    }

    void link_staysALinkAndItsFileKeepsItsMode()
    {
        const auto real = m_home->path() + u"/dotfile"_s;
        QFile::rename(m_path, real);
        chmod(QFile::encodeName(real).constData(), 0640);
        QFile::link(real, m_path);

        m_suite->setInteger(u"Ours"_s, 3);
        QVERIFY(m_suite->synchronize());

        QCOMPARE(QFileInfo(m_path).symLinkTarget(), real);
        QVERIFY(TemporaryHome::contents(real).contains("Ours=3"));
        QCOMPARE(statusOf(real).st_mode & ALLPERMS, 0640U);
    }

    void newFilesAndFolders_areTheUsersOnly()
    {
        const auto folder = m_home->path() + u"/a/b"_s;
        const auto before = umask(0);
        const auto suite = PreferencesSuite::open(name, folder);
        suite->setInteger(u"Ours"_s, 3);
        QVERIFY(suite->synchronize());
        umask(before);

        QCOMPARE(statusOf(m_home->path() + u"/a"_s).st_mode & ALLPERMS, 0700U);
        QCOMPARE(statusOf(folder).st_mode & ALLPERMS, 0700U);
        QCOMPARE(statusOf(folder + u'/' + name + u".conf"_s).st_mode & ALLPERMS, 0600U);
        QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden), {name + u".conf"_s});
        QVERIFY(!PreferencesSuite::open(name, m_path + u"/below a file"_s));
    }

    void savesWithinOneTickOfTheClock_areSeen()
    {
        for (int i = 10; i < 99; ++i) {
            saveInPlace(m_path, "[General]\nKept=1\nList=" + QByteArray::number(i) + '\n');
            m_suite->synchronize();
            QCOMPARE(m_suite->integer(u"List"_s), i);
        }
    }

    void values_areThoseOfQSettings()
    {
        for (const auto& value :
            {u""_s, u"a, \"b\"; c=d \\ é"_s, u" blanks "_s, u"@home"_s, u"@(x)"_s, u"tab\t1"_s}) {
            m_suite->setString(u"Ours"_s, value);
            QVERIFY(m_suite->synchronize());
            QSettings settings(m_path, QSettings::IniFormat);
            QCOMPARE(settings.value(u"Ours"_s).toString(), value);
            settings.setValue(u"Theirs"_s, value);
            settings.setValue(u"Bytes"_s, QByteArray("x"));
            settings.sync();
            QVERIFY(m_suite->synchronize());
            QCOMPARE(m_suite->string(u"Theirs"_s), value);
            for (const auto& key : {u"Bytes"_s, u"List"_s})
                QVERIFY(m_suite->hasValue(key) && !m_suite->string(key));
        }
    }

    void otherPrograms_loseNothingAndNothingIsLost_data()
    {
        QTest::addColumn<bool>("isInPlace");
        QTest::newRow("saved in place") << true;
        QTest::newRow("merged and replaced by QSettings") << false;
    }

    void otherPrograms_loseNothingAndNothingIsLost()
    {
        QFETCH(bool, isInPlace);
        const int count = isInPlace ? 500 : 60;
        std::atomic<int> lost = 0;
        std::thread other([&, path = m_path] {
            QSettings settings(path, QSettings::IniFormat);
            QByteArray last = "Kept=1";
            for (int i = 1; i <= count; ++i) {
                if (isInPlace) {
                    auto text = TemporaryHome::contents(path);
                    lost += text.contains(last + '\n') ? 0 : 1;
                    const auto next = "Theirs=" + QByteArray::number(i);
                    saveInPlace(path, text.replace(last, i == 1 ? last + '\n' + next : next));
                    last = next;
                } else {
                    settings.setValue(u"Theirs"_s, i);
                    settings.sync();
                }
            }
        });
        int ours = 0;
        while (m_suite->integer(u"Theirs"_s) < count && ours < 5000) {
            m_suite->setInteger(u"Ours"_s, ++ours);
            m_suite->synchronize();
            lost += m_suite->integer(u"Kept"_s) == 1 ? 0 : 1;
            QThread::msleep(3); // a breath for the other one to get the lock in
        }
        other.join();

        QCOMPARE(lost.load(), 0);
        QVERIFY(m_suite->synchronizeWithin(5s));
        QCOMPARE(m_home->suiteValue(u"Theirs"_s), QString::number(count));
        QCOMPARE(m_home->suiteValue(u"Ours"_s), QString::number(ours));
    }

private:
    std::unique_ptr<TemporaryHome> m_home;
    std::unique_ptr<PreferencesSuite> m_suite;
    QString m_folder;
    QString m_path;
};

QTEST_GUILESS_MAIN(PreferencesSuiteTest)
#include "PreferencesSuiteTest.moc"
