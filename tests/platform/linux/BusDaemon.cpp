#include "platform/linux/BusDaemon.h"

#include "support/ChildProcess.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QFile>
#include <QMap>

#include <csignal>
#include <utility>

using namespace Qt::StringLiterals;

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
    return u"unix:path="_s + m_directory.filePath(u"bus"_s);
}

void BusDaemon::start()
{
    ChildProcess::endWithThisProcess(m_process);
    m_process.start(u"dbus-daemon"_s,
        {u"--session"_s, u"--nofork"_s, u"--address="_s + address(), u"--print-address=1"_s});
    if (!m_process.waitForReadyRead(20'000))
        qFatal("dbus-daemon does not start: %s", m_process.readAllStandardError().constData());
    static int count = 0;
    m_name = u"test %1"_s.arg(++count);
    if (!QDBusConnection::connectToBus(address(), m_name).isConnected())
        qFatal("The test's own bus does not answer.");
}

void BusDaemon::stop()
{
    QDBusConnection::disconnectFromBus(m_name);
    m_process.kill();
    m_process.waitForFinished();
    QFile::remove(m_directory.filePath(u"bus"_s)); // a killed one leaves it
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
    const auto reply = connection().call(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s,
        u"/org/freedesktop/DBus"_s,
        u"org.freedesktop.DBus.Debug.Stats"_s,
        u"GetAllMatchRules"_s));
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
