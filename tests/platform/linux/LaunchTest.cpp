#include "platform/Workspace.h"
#include "platform/linux/BusDaemon.h"
#include "support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QTemporaryFile>
#include <QTest>

#include <unistd.h>

namespace {

/// A field of `/proc/<process>/stat`, counted as proc(5) does, from the third on.
QByteArray processField(const QByteArray& stat, int field)
{
    return stat.mid(stat.lastIndexOf(')') + 2).split(' ').value(field - 3);
}

QList<QByteArray> deadChildren()
{
    QList<QByteArray> dead;
    const auto processes =
        QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[1-9]*")}, QDir::Dirs);
    for (const auto& process : processes) {
        const auto stat = TemporaryHome::contents(QStringLiteral("/proc/%1/stat").arg(process));
        if (processField(stat, 3) == "Z" && processField(stat, 4).toInt() == getpid())
            dead << stat;
    }
    return dead;
}

/// Standard error while it lives.
class StandardError {
public:
    StandardError() : m_original(dup(STDERR_FILENO))
    {
        if (m_file.open())
            dup2(m_file.handle(), STDERR_FILENO);
    }
    ~StandardError()
    {
        dup2(m_original, STDERR_FILENO);
        close(m_original);
    }
    StandardError(const StandardError&) = delete;
    StandardError& operator=(const StandardError&) = delete;

    QByteArray text() const { return TemporaryHome::contents(m_file.fileName()); }

private:
    QTemporaryFile m_file;
    int m_original;
};

} // namespace

/// Launching installed applications. GLib reads where they are, and which there are, once for the
/// process: one home for all tests, and no entry comes later.
class LaunchTest : public QObject {
    Q_OBJECT

public:
    LaunchTest()
    {
        qunsetenv("DISPLAY");
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");

        const auto script = m_home.path() + QStringLiteral("/program with spaces");
        TemporaryHome::writeFile(script,
            "#!/bin/sh\n"
            "echo noise; echo noise >&2\n"
            "cat /proc/$$/stat >'" +
                trace().toUtf8() + "'\n");
        QFile::setPermissions(script, QFile::ReadOwner | QFile::ExeOwner);
        install("works", "Exec=\"" + script.toUtf8() + "\"\n");
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
        const StandardError standardError;
        Workspace workspace;

        workspace.launchApplication(identifier(entry));
        workspace.launchApplication(identifier("works")); // after it

        QTRY_VERIFY(QFile::exists(trace()));
        QCOMPARE(standardError.text(), QByteArray());
        QCOMPARE(deadChildren(), {});
    }

    void sessionBusThatEnds_doesNotEndUs()
    {
        Workspace workspace;
        workspace.launchApplication(identifier("not-activatable"));
        workspace.launchApplication(identifier("works"));
        QTRY_VERIFY(QFile::exists(trace()));
        m_bus.stop();
        QFile::remove(trace());

        workspace.launchApplication(identifier("works"));

        QTRY_VERIFY(QFile::exists(trace()));
    }

private:
    static QString identifier(const QByteArray& name)
    {
        return QStringLiteral("com.example.") + QString::fromLatin1(name);
    }
    QString entryFile(const QByteArray& name) const
    {
        return m_home.path() +
               QStringLiteral("/share/applications/%1.desktop").arg(identifier(name));
    }
    void install(const QByteArray& name, const QByteArray& lines) const
    {
        TemporaryHome::writeFile(
            entryFile(name), "[Desktop Entry]\nType=Application\nName=Example\n" + lines);
    }
    QString trace() const { return m_home.path() + QStringLiteral("/trace"); }

    TemporaryHome m_home;
    BusDaemon m_bus;
};

QTEST_GUILESS_MAIN(LaunchTest)
#include "LaunchTest.moc"
