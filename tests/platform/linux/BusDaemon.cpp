#include "platform/linux/BusDaemon.h"

#include "support/ChildProcess.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QFile>
#include <QMap>

#include <algorithm>

using namespace Qt::StringLiterals;

void BusDaemon::start()
{
    ChildProcess::endWithThisProcess(m_process);
    m_process.start(u"dbus-daemon"_s,
        {u"--session"_s, u"--nofork"_s, u"--address="_s + address(), u"--print-address=1"_s});
    if (!m_process.waitForReadyRead(20'000))
        qFatal("dbus-daemon does not start: %s", m_process.readAllStandardError().constData());
    if (!QDBusConnection::connectToBus(address(), address()).isConnected())
        qFatal("The test's own bus does not answer.");
}

void BusDaemon::stop()
{
    QDBusConnection::disconnectFromBus(address());
    m_process.kill();
    m_process.waitForFinished();
    QFile::remove(socket()); // a killed one leaves it
}

void BusDaemon::send(int signal) const
{
    kill(static_cast<pid_t>(m_process.processId()), signal);
}

bool BusDaemon::isListenedTo(const QString& interface) const
{
    const auto reply = connection().call(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s,
        u"/org/freedesktop/DBus"_s,
        u"org.freedesktop.DBus.Debug.Stats"_s,
        u"GetAllMatchRules"_s));
    const auto rules = qdbus_cast<QMap<QString, QStringList>>(reply.arguments().value(0));
    return std::ranges::any_of(
        rules, [&](const QStringList& ofOne) { return !ofOne.filter(interface).isEmpty(); });
}
