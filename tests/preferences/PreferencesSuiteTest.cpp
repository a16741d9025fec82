#include "platform/PreferencesSuite.h"

#include "support/TemporaryHome.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLockFile>
#include <QProcess>
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
        for (const auto* command : {"mkdir", "mkfifo", "ln -s /nowhere", "ln -s $0", "true gone"})
            QTest::newRow(command) << QByteArray();
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("half a value") << QByteArray("[General]\nKept=\"1\n");
        QTest::newRow("no last line's end") << QByteArray("[General]\nKept=1\nList=1");
        QTest::newRow("keys missing") << QByteArray("[General]\nKept=4\n");
        QTest::newRow("prose") << wellText + "dear diary\n";
        QTest::newRow("binary") << QByteArray("a=\0\n", 4);
        QTest::newRow("only comments") << QByteArray("; nothing\n\n");
        QTest::newRow("too long") << "a=" + QByteArray(2'000'000, 'a') + '\n';
    }

    void brokenFile_isNoNews()
    {
        QFETCH(QByteArray, text);
        const auto shell = [this](const QString& command) {
            QProcess::execute(u"/bin/sh"_s, {u"-c"_s, u"rm -rf $0; %1 $0"_s.arg(command), m_path});
        };
        if (text.isNull())
            shell(QString::fromUtf8(QTest::currentDataTag()));
        else
            saveInPlace(m_path, text);

        m_suite->setInteger(u"Ours"_s, 3);
        QVERIFY(!m_suite->synchronize() && !m_suite->problem().isEmpty());

        QVERIFY(m_suite->integer(u"Kept"_s) == 1 && m_suite->integer(u"Ours"_s) == 3);
        QVERIFY(
            text.isNull() ? !QFileInfo(m_path).isFile() : TemporaryHome::contents(m_path) == text);

        shell(u"touch"_s);
        TemporaryHome::writeFile(m_path, wellText);
        QVERIFY(m_suite->synchronize() && m_suite->problem().isEmpty());
        QCOMPARE(TemporaryHome::contents(m_path),
            QByteArray(wellText).replace("1, 2\n", "1, 2\nOurs=3\n"));
    }

    void brokenAtStart_defaultsNeverReplaceWhatComesBack()
    {
        TemporaryHome::writeFile(m_path, "dear diary\n");
        m_suite = PreferencesSuite::open(name, m_folder);
        m_suite->setInteger(u"Kept"_s, 9, Overwrite::Never);
        QVERIFY(!m_suite->synchronize() && !m_suite->isKnown());

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

        QVERIFY(!m_suite->synchronize() && !m_suite->hasValue(u"Theirs"_s));
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
        lock.lock();
        m_suite->setInteger(u"Kept"_s, 1);
        QVERIFY(m_suite->synchronize()); // what the file holds is not written again

        m_suite->setInteger(u"Kept"_s, 5);
        m_suite->setInteger(u"Ours"_s, 3, Overwrite::Never);
        QElapsedTimer waited;
        waited.start();

        QVERIFY(!m_suite->synchronize());
        QVERIFY(waited.elapsed() < 90); // 50 ms, on a busy machine
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
        QFile::setPermissions(real, QFile::permissions(real) | QFile::WriteOther);
        const auto before = QFile::permissions(real);
        QFile::link(real, m_path);

        m_suite->setInteger(u"Ours"_s, 3);
        QVERIFY(m_suite->synchronize());

        QCOMPARE(QFileInfo(m_path).symLinkTarget(), real);
        QVERIFY(TemporaryHome::contents(real).contains("Ours=3"));
        QCOMPARE(QFile::permissions(real), before);
    }

    void newFilesAndFolders_areTheUsersOnly()
    {
        const auto folder = m_home->path() + u"/a/b"_s;
        const auto before = umask(0);
        const auto suite = PreferencesSuite::open(name, folder);
        suite->setInteger(u"Ours"_s, 3);
        QVERIFY(suite->synchronize());
        umask(before);

        const auto file = folder + u'/' + name + u".conf"_s;
        for (const auto& made : {m_home->path() + u"/a"_s, folder, file})
            QCOMPARE(QFile::permissions(made) & QFile::Permissions(0x77), QFile::Permissions());
        QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden), {name + u".conf"_s});
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
        for (const auto& value : {u""_s,
                 u"a, \"b\"; \\ é"_s,
                 u" blanks "_s,
                 u"@home"_s,
                 u"@ByteArray(x)"_s,
                 u"tab\t1"_s}) {
            m_suite->setString(u"Ours"_s, value);
            QVERIFY(m_suite->synchronize());
            QSettings settings(m_path, QSettings::IniFormat);
            QCOMPARE(settings.value(u"Ours"_s).toString(), value);
            settings.setValue(u"Theirs"_s, value);
            settings.sync();
            QVERIFY(m_suite->synchronize());
            QCOMPARE(m_suite->string(u"Theirs"_s), value);
        }
    }

    void programThatSavesInPlace_losesNothingAndNothingIsLost()
    {
        constexpr int count = 500;
        std::atomic<int> lost = 0;
        saveInPlace(m_path, QByteArray(wellText).replace("Kept=1\n", "Kept=1\nTheirs=0\n"));
        std::thread other([&lost, path = m_path] {
            for (int i = 0; i < count; ++i) {
                auto text = TemporaryHome::contents(path);
                const auto last = "Theirs=" + QByteArray::number(i) + '\n';
                lost += text.contains(last) ? 0 : 1;
                saveInPlace(path, text.replace(last, "Theirs=" + QByteArray::number(i + 1) + '\n'));
            }
        });
        int ours = 0;
        while (m_suite->integer(u"Theirs"_s) < count && ours < 5000) {
            m_suite->setInteger(u"Ours"_s, ++ours);
            m_suite->synchronize();
            lost += m_suite->integer(u"Kept"_s) == 1 ? 0 : 1;
            QThread::msleep(3); // a breath for the other one to save
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
