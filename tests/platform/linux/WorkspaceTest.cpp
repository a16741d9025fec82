#include "platform/Workspace.h"
#include "desktop/VirtualDesktop.h"
#include "platform/linux/BusDaemon.h"
#include "platform/linux/FakeLogind.h"
#include "support/CapturedOutput.h"
#include "support/TemporaryHome.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// A field of `/proc/<process>/stat`, counted as proc(5) does, from the third on.
QByteArray processField(const QByteArray& stat, int field)
{
    return stat.mid(stat.lastIndexOf(')') + 2).split(' ').value(field - 3);
}

QList<QByteArray> deadChildren()
{
    QList<QByteArray> dead;
    const auto processes = QDir(u"/proc"_s).entryList({u"[1-9]*"_s}, QDir::Dirs);
    for (const auto& process : processes) {
        const auto stat = TemporaryHome::contents(u"/proc/%1/stat"_s.arg(process));
        if (processField(stat, 3) == "Z" && processField(stat, 4).toInt() == getpid())
            dead << stat;
    }
    return dead;
}

} // namespace

/// Launching applications, opening pages, and what the session tells. GLib reads where
/// applications are, and which there are, once for the process: one home for all tests.
class WorkspaceTest : public QObject {
    Q_OBJECT

public:
    explicit WorkspaceTest(VirtualDesktop& desktop) : m_desktop(desktop)
    {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_systemBus.address().toUtf8());
        const auto program = makeProgram(u"program with spaces"_s,
            "echo noise; echo noise >&2\ncat /proc/$$/stat >'" + trace().toUtf8() + "'\n");
        install("works", "Exec=\"" + program.toUtf8() + "\"\n");
        install("no-program", "NoDisplay=true\n");
        install("missing-program", "Exec=/nonexistent/program\n");
        install("folder", "Exec=/tmp\n");
        install("open-quote", "Exec=sh -c 'unfinished\n");
        install("not-activatable", "DBusActivatable=true\nExec=true\n");
        TemporaryHome::writeFile(entryFile("garbage"), "]no entry[");
    }

private Q_SLOTS:
    void init() { QFile::remove(trace()); }

    void launchedApplication_runsOnItsOwn()
    {
        Workspace workspace;
        workspace.launchApplication(identifier("works"));

        QTRY_VERIFY(TemporaryHome::contents(trace()).endsWith('\n'));
        const auto stat = TemporaryHome::contents(trace());
        QVERIFY(processField(stat, 4).toInt() != getpid());  // another's child
        QVERIFY(processField(stat, 6).toInt() != getsid(0)); // does not end with our terminal
        QCOMPARE(deadChildren(), {});
    }

    void applicationThatCannotBeLaunched_isPassedOver_data()
    {
        QTest::addColumn<QByteArray>("entry");
        QTest::newRow("not installed") << QByteArray("not-installed");
        QTest::newRow("path in place of a name") << QByteArray("../../etc");
        QTest::newRow("names no program") << QByteArray("no-program");
        QTest::newRow("names a missing program") << QByteArray("missing-program");
        QTest::newRow("names a folder") << QByteArray("folder");
        QTest::newRow("command cannot be read") << QByteArray("open-quote");
        QTest::newRow("activated through a bus that knows it not") << QByteArray("not-activatable");
        QTest::newRow("no desktop entry") << QByteArray("garbage");
    }

    void applicationThatCannotBeLaunched_isPassedOver()
    {
        QFETCH(QByteArray, entry);
        CapturedOutput output(STDOUT_FILENO);
        CapturedOutput errors(STDERR_FILENO);
        Workspace workspace;

        workspace.launchApplication(identifier(entry));
        workspace.launchApplication(identifier("works")); // after it

        QTRY_VERIFY(QFile::exists(trace()));
        QCOMPARE(output.text() + errors.text(), QByteArray());
        QCOMPARE(deadChildren(), {});
    }

    void sessionBusThatEnds_doesNotEndUs()
    {
        Workspace workspace;
        workspace.launchApplication(identifier("not-activatable"));
        workspace.launchApplication(identifier("works"));
        QTRY_VERIFY(QFile::exists(trace()));
        m_desktop.stopBus();
        QFile::remove(trace());

        workspace.launchApplication(identifier("works"));

        QTRY_VERIFY(QFile::exists(trace()));
    }

    void url_opensInTheBrowser()
    {
        makeProgram(u"xdg-open"_s, "echo \"$1\" >'" + trace().toUtf8() + "'\n");
        const auto path = qgetenv("PATH");
        QTest::failOnWarning(QRegularExpression(u".*"_s));

        qputenv("PATH", "/nonexistent");
        qputenv("BROWSER", "");
        Workspace::shared().openUrl(QUrl(u"https://example.org/none"_s));
        qputenv("PATH", m_home.path().toUtf8() + ':' + path);
        Workspace::shared().openUrl(QUrl(u"https://example.org/a?b=c%20d"_s));

        QTRY_COMPARE(TemporaryHome::contents(trace()), "https://example.org/a?b=c%20d\n");
        qputenv("PATH", path);
    }

    void wake_isTold_fallingAsleepIsNot()
    {
        Workspace workspace;
        QSignalSpy wakes(&workspace, &Workspace::didWake);
        QTRY_VERIFY(isListening());
        FakeLogind::send(m_systemBus.connection(), {false}); // some program's
        FakeLogind logind(m_systemBus.connection());

        logind.tell(true);
        FakeLogind::send(m_systemBus.connection(), {}); // without a value
        FakeLogind::send(m_systemBus.connection(), {u"false"_s});
        logind.tell(false);
        logind.tell(true);
        logind.tell(false);
        QTRY_VERIFY(wakes.count() >= 2);
        QVERIFY(!wakes.wait(100));
        QCOMPARE(wakes.count(), 2);
    }

    void logindAndItsBus_mayBeMissingAndComeAndRestart()
    {
        m_systemBus.stop();
        Workspace workspace;
        const QSignalSpy wakes(&workspace, &Workspace::didWake);
        for (int i = 1; i <= 4; ++i) {
            if (i % 2 == 1) // otherwise only logind comes again, from another connection
                m_systemBus.start();
            QTRY_VERIFY_WITH_TIMEOUT(isListening(), 20'000);
            const auto name = u"logind %1"_s.arg(i);
            FakeLogind(QDBusConnection::connectToBus(m_systemBus.address(), name)).tell(false);
            QTRY_COMPARE(wakes.count(), i);
            QDBusConnection::disconnectFromBus(name);
            if (i % 2 == 0)
                m_systemBus.stop();
        }
        m_systemBus.start();
    }

    void busThatHangs_holdsNothingUp()
    {
        m_systemBus.pause();
        QElapsedTimer time;
        time.start();
        {
            Workspace workspace;
            QTest::qWait(100); // for the other thread to be in the midst of it
        }
        const auto elapsed = time.elapsed();
        m_systemBus.resume();
        QVERIFY(elapsed < 5000);
    }

private:
    static QString identifier(const QByteArray& name)
    {
        return u"com.example."_s + QString::fromLatin1(name);
    }
    QString entryFile(const QByteArray& name) const
    {
        return m_home.path() + u"/share/applications/%1.desktop"_s.arg(identifier(name));
    }
    void install(const QByteArray& name, const QByteArray& lines) const
    {
        TemporaryHome::writeFile(
            entryFile(name), "[Desktop Entry]\nType=Application\nName=Example\n" + lines);
    }
    QString makeProgram(const QString& name, const QByteArray& lines) const
    {
        const auto program = m_home.path() + u'/' + name;
        TemporaryHome::writeFile(program, "#!/bin/sh\n" + lines);
        QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner);
        return program;
    }
    QString trace() const { return m_home.path() + u"/trace"_s; }
    bool isListening() const { return m_systemBus.isListenedTo(FakeLogind::interface()); }

    TemporaryHome m_home;
    VirtualDesktop& m_desktop;
    BusDaemon m_systemBus;
};

int main(int argc, char** argv)
{
    static VirtualDesktop desktop; // static, to go after what uses it
    qputenv("DISPLAY", desktop.display().toUtf8());
    qputenv("DBUS_SESSION_BUS_ADDRESS", desktop.busAddress().toUtf8());
    qputenv("QT_QPA_PLATFORM", "xcb");
    const QGuiApplication application(argc, argv);
    WorkspaceTest test(desktop);
    return QTest::qExec(&test, argc, argv);
}
#include "WorkspaceTest.moc"
