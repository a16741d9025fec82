#include "platform/Workspace.h"
#include "desktop/X11Desktop.h"
#include "platform/linux/BusDaemon.h"
#include "platform/linux/workspace/GioHandles.h"
#include "support/CapturedOutput.h"
#include "support/TemporaryHome.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace {

const auto logind = u"org.freedesktop.login1"_s;
const auto logindInterface = logind + u".Manager"_s;

/// What logind tells with false when the machine wakes, and with true before it sleeps.
void prepareForSleep(const QDBusConnection& bus, const QVariantList& arguments)
{
    auto signal = QDBusMessage::createSignal(
        u"/org/freedesktop/login1"_s, logindInterface, u"PrepareForSleep"_s);
    signal.setArguments(arguments);
    bus.send(signal);
}

constexpr auto sessionPath = "/org/freedesktop/login1/session/_31";

/// What a locker sets at logind.
class Session : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Session")
    Q_PROPERTY(bool LockedHint MEMBER m_isLocked)

public:
    void setIsLocked(QDBusConnection bus, const QVariant& isLocked)
    {
        m_isLocked = isLocked.toBool();
        auto signal = QDBusMessage::createSignal(QString::fromLatin1(sessionPath),
            u"org.freedesktop.DBus.Properties"_s,
            u"PropertiesChanged"_s);
        signal << logind + u".Session"_s << QVariantMap{{u"LockedHint"_s, isLocked}}
               << QStringList();
        bus.send(signal);
    }

private:
    bool m_isLocked = false;
};

class Manager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

public Q_SLOTS:
    QDBusObjectPath GetSession(const QString& name) const
    {
        return QDBusObjectPath(name == u"auto" ? QString::fromLatin1(sessionPath) : u"/"_s);
    }
};

bool hasDeadChild()
{
    siginfo_t child{};
    return waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) == 0 && child.si_pid != 0;
}

} // namespace

/// Launching applications, opening pages, and what the session tells. GLib reads where
/// applications are, and which there are, once for the process: one home for all tests.
class WorkspaceTest : public QObject {
    Q_OBJECT

public:
    explicit WorkspaceTest(X11Desktop& desktop) : m_desktop(desktop)
    {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_systemBus.address().toUtf8());
        // What proc(5) tells of it, from its state on.
        const auto program = makeProgram(u"program with spaces"_s,
            "echo noise; echo noise >&2\nsed 's/.*) //' /proc/$$/stat >'" + trace().toUtf8() +
                "'\n");
        install(u"works"_s, "Exec=\"" + program.toUtf8() + "\"\n");
        install(u"no-program"_s, "NoDisplay=true\n");
        install(u"folder"_s, "Exec=/tmp\n");
        install(u"not-activatable"_s, "DBusActivatable=true\nExec=true\n");
    }

private Q_SLOTS:
    void init() { QFile::remove(trace()); }

    void launchedApplication_runsOnItsOwn()
    {
        Workspace workspace;
        workspace.launchApplication(identifier(u"works"_s));

        QTRY_VERIFY(TemporaryHome::contents(trace()).endsWith('\n'));
        const auto fields = TemporaryHome::contents(trace()).split(' ');
        QVERIFY(fields[1].toInt() != getpid());  // another's child
        QVERIFY(fields[3].toInt() != getsid(0)); // does not end with our terminal
        QVERIFY(!hasDeadChild());
    }

    void applicationsThatCannotBeLaunched_arePassedOver()
    {
        CapturedOutput output(STDOUT_FILENO);
        CapturedOutput errors(STDERR_FILENO);
        Workspace workspace;

        for (const auto& name :
            {u"not-installed"_s, u"../../etc"_s, u"no-program"_s, u"folder"_s, u"works"_s})
            workspace.launchApplication(identifier(name));

        QTRY_VERIFY(QFile::exists(trace()));
        QCOMPARE(output.text() + errors.text(), QByteArray());
        QVERIFY(!hasDeadChild());
    }

    void sessionBusThatEnds_doesNotEndUs()
    {
        // GIO lets go of the process's connection at some time; held, it surely sees the end.
        const GioHandle<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
        Workspace workspace;
        workspace.launchApplication(identifier(u"not-activatable"_s));
        workspace.launchApplication(identifier(u"works"_s));
        QTRY_VERIFY(QFile::exists(trace()));
        m_desktop.stopBus();
        QFile::remove(trace());

        workspace.launchApplication(identifier(u"works"_s));

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
        auto bus = m_systemBus.connection();
        prepareForSleep(bus, {false}); // some program's
        QVERIFY(!wakes.wait(200));
        bus.registerService(logind);
        // GIO may not know yet who owns the name that has just been taken.
        QTRY_VERIFY((prepareForSleep(bus, {false}), wakes.count() > 0));
        QTest::qWait(100);
        wakes.clear();

        for (const QVariantList& arguments :
            {QVariantList{true}, {}, {u"false"_s}, {false}, {true}, {false}})
            prepareForSleep(bus, arguments);
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
            auto bus = QDBusConnection::connectToBus(m_systemBus.address(), name);
            bus.registerService(logind);
            // Again and again, because GIO may not know yet who owns a name that has just been
            // taken.
            const auto before = wakes.count();
            QTRY_VERIFY((prepareForSleep(bus, {false}), wakes.count() > before));
            QDBusConnection::disconnectFromBus(name);
            if (i % 2 == 0)
                m_systemBus.stop();
        }
        m_systemBus.start();
    }

    void lockOfTheSession_isFollowedAsLongAsLogindSaysSo()
    {
        Session session;
        Manager manager;
        auto bus = QDBusConnection::connectToBus(m_systemBus.address(), u"locking logind"_s);
        bus.registerObject(u"/org/freedesktop/login1"_s, &manager, QDBusConnection::ExportAllSlots);
        bus.registerObject(
            QString::fromLatin1(sessionPath), &session, QDBusConnection::ExportAllProperties);
        session.setIsLocked(bus, true); // before anybody asks
        QVERIFY(bus.registerService(logind));
        Workspace workspace;
        QSignalSpy locks(&workspace, &Workspace::sessionLockChanged);
        const auto latest = [&locks] {
            return locks.isEmpty() ? QVariant() : locks.last().first();
        };
        QTRY_COMPARE(latest(), QVariant(true));

        session.setIsLocked(bus, u"banana"_s);
        session.setIsLocked(bus, false);
        QTRY_COMPARE(latest(), QVariant(false));
        session.setIsLocked(bus, true);
        QTRY_COMPARE(latest(), QVariant(true));
        bus.unregisterService(logind); // as when it ends
        QTRY_COMPARE(latest(), QVariant(false));
        QCOMPARE(locks.count(), 4);
        QDBusConnection::disconnectFromBus(u"locking logind"_s);
    }

    void busThatHangs_holdsNothingUp()
    {
        m_systemBus.send(SIGSTOP);
        QElapsedTimer time;
        time.start();
        {
            Workspace workspace;
            QTest::qWait(100); // for the other thread to be in the midst of it
        }
        const auto elapsed = time.elapsed();
        m_systemBus.send(SIGCONT);
        QVERIFY(elapsed < 5000);
    }

private:
    static QString identifier(const QString& name) { return u"com.example."_s + name; }
    void install(const QString& name, const QByteArray& lines) const
    {
        TemporaryHome::writeFile(
            m_home.path() + u"/share/applications/%1.desktop"_s.arg(identifier(name)),
            "[Desktop Entry]\nType=Application\nName=Example\n" + lines);
    }
    QString makeProgram(const QString& name, const QByteArray& lines) const
    {
        const auto program = m_home.path() + u'/' + name;
        TemporaryHome::writeFile(program, "#!/bin/sh\n" + lines);
        QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner);
        return program;
    }
    QString trace() const { return m_home.path() + u"/trace"_s; }
    bool isListening() const { return m_systemBus.isListenedTo(logindInterface); }

    TemporaryHome m_home;
    X11Desktop& m_desktop;
    BusDaemon m_systemBus;
};

int main(int argc, char** argv)
{
    static X11Desktop desktop; // static, to go after what uses it
    qputenv("DISPLAY", desktop.display().toUtf8());
    qputenv("DBUS_SESSION_BUS_ADDRESS", desktop.busAddress().toUtf8());
    qputenv("QT_QPA_PLATFORM", "xcb");
    const QGuiApplication application(argc, argv);
    WorkspaceTest test(desktop);
    return QTest::qExec(&test, argc, argv);
}
#include "WorkspaceTest.moc"
