#include "platform/linux/BusDaemon.h"

#include "support/ChildProcess.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QFile>
#include <QMap>

#include <csignal>
#include <utility>

BusDaemon::BusDaemon(Start start)
{
    if (start == Start::Now)
        this->start();
}

BusDaemon::~BusDaemon()
{
    if (m_process.state() != QProcess::NotRunning)
        stop();
}

QString BusDaemon::address() const
{
    return QStringLiteral("unix:path=") + m_directory.filePath(QStringLiteral("bus"));
}

void BusDaemon::start()
{
    ChildProcess::endWithThisProcess(m_process);
    m_process.start(QStringLiteral("dbus-daemon"),
        {QStringLiteral("--session"),
            QStringLiteral("--nofork"),
            QStringLiteral("--address=") + address(),
            QStringLiteral("--print-address=1")});
    if (!m_process.waitForReadyRead(20'000))
        qFatal("dbus-daemon does not start: %s", m_process.readAllStandardError().constData());
    static int count = 0;
    m_name = QStringLiteral("test %1").arg(++count);
    if (!QDBusConnection::connectToBus(address(), m_name).isConnected())
        qFatal("The test's own bus does not answer.");
}

void BusDaemon::stop()
{
    QDBusConnection::disconnectFromBus(m_name);
    m_process.kill();
    m_process.waitForFinished();
    QFile::remove(m_directory.filePath(QStringLiteral("bus"))); // a killed one leaves it
}

void BusDaemon::pause() const
{
    kill(static_cast<pid_t>(m_process.processId()), SIGSTOP);
}

void BusDaemon::resume() const
{
    kill(static_cast<pid_t>(m_process.processId()), SIGCONT);
}

bool BusDaemon::isListenedTo(const QString& interface) const
{
    const auto reply =
        connection().call(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
            QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus.Debug.Stats"),
            QStringLiteral("GetAllMatchRules")));
    if (reply.type() != QDBusMessage::ReplyMessage)
        qFatal("The bus does not tell who listens: %s", qUtf8Printable(reply.errorMessage()));
    QMap<QString, QStringList> rules; // by listener
    reply.arguments().constFirst().value<QDBusArgument>() >> rules;
    for (const auto& listener : std::as_const(rules)) {
        if (!listener.filter(interface).isEmpty())
            return true;
    }
    return false;
}
