#include "desktop/HelperProcess.h"

#include "support/ChildProcess.h"
#include "support/TestVideos.h"
#include "support/VideoRows.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <QRegularExpression>
#include <QTest>
#include <QUrl>

#include <unistd.h>

using namespace Qt::StringLiterals;

HelperProcess::HelperProcess(VirtualDesktop& desktop)
    : m_desktop(desktop), m_environment(desktop.environment())
{
    setEnvironment(u"XDG_RUNTIME_DIR"_s, m_home.path());
    setEnvironment(u"TAVELOR_SERVICE_URL"_s, u"https://127.0.0.1:9"_s);
    VideoRows::createTable(m_home.databaseFile());
}

HelperProcess::~HelperProcess()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.terminate();
        if (!m_process.waitForFinished(5000))
            QTest::qFail("The helper does not end.", __FILE__, __LINE__);
    }
    // A machine without a sound card has sound libraries that say so.
    static const QRegularExpression soundLines(
        u"^(ALSA lib|\\[[A-Z]\\]\\[.*\\] pw\\.).*\n?"_s, QRegularExpression::MultilineOption);
    const auto errors = QString::fromUtf8(m_process.readAllStandardError()).remove(soundLines);
    if (!errors.isEmpty())
        QTest::qFail(qUtf8Printable(errors), __FILE__, __LINE__);
}

QString HelperProcess::videoFile(const QString& sign) const
{
    return m_home.path() + u'/' + sign + u".mp4"_s;
}

void HelperProcess::addVideo(const QString& sign, const QString& colour, double seconds)
{
    TestVideos::makePlain(videoFile(sign), colour, seconds);
    addRow(sign, videoFile(sign));
}

void HelperProcess::addRow(const QString& sign, const QString& file)
{
    VideoRows::insert(m_home.databaseFile(),
        {VideoRows::row(sign, QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded))});
}

void HelperProcess::setEnvironment(const QString& name, const QString& value)
{
    m_environment.insert(name, value);
}

void HelperProcess::start()
{
    m_process.setProcessEnvironment(m_environment);
    ChildProcess::endWithThisProcess(m_process);
    m_process.start(QStringLiteral(TAVELORHELPER), {});
    if (!m_process.waitForStarted())
        qFatal("The helper does not start.");
}

bool HelperProcess::waitForEnd(int milliseconds)
{
    return m_process.state() == QProcess::NotRunning || m_process.waitForFinished(milliseconds);
}

double HelperProcess::processorSeconds() const
{
    const auto status = TemporaryHome::contents(u"/proc/%1/stat"_s.arg(m_process.processId()));
    const auto fields = status.mid(status.lastIndexOf(')')).split(' ');
    return static_cast<double>(fields[12].toLongLong() + fields[13].toLongLong()) /
           static_cast<double>(sysconf(_SC_CLK_TCK));
}

bool HelperProcess::comesToRest() const
{
    constexpr int attempts = 6;
    constexpr int seconds = 3;
    for (int i = 0; i < attempts; ++i) {
        const auto before = processorSeconds();
        QTest::qWait(1000 * seconds);
        if ((processorSeconds() - before) / seconds < 0.01)
            return true;
    }
    return false;
}

QVariant HelperProcess::status(const QString& property) const
{
    auto question = QDBusMessage::createMethodCall(u"com.zemra.tavelor.helper"_s,
        u"/com/zemra/tavelor/Helper"_s,
        u"org.freedesktop.DBus.Properties"_s,
        u"Get"_s);
    question << u"com.zemra.tavelor.Helper"_s << property;
    auto bus = QDBusConnection::connectToBus(m_desktop.busAddress(), m_desktop.busAddress());
    const QDBusReply<QDBusVariant> answer = bus.call(question);
    return answer.value().variant();
}

QStringList HelperProcess::lines()
{
    m_output += m_process.readAllStandardOutput();
    return QString::fromUtf8(m_output).split(u'\n', Qt::SkipEmptyParts);
}

void HelperProcess::announceLibrary() const
{
    auto bus = QDBusConnection::connectToBus(m_desktop.busAddress(), u"announcer"_s);
    auto signal = QDBusMessage::createSignal(
        u"/com/zemra/tavelor"_s, u"com.zemra.tavelor.DistributedNotification"_s, u"Posted"_s);
    signal << u"UpdateVideoList"_s << QString() << QVariantMap();
    bus.send(signal);
    const auto driver = u"org.freedesktop.DBus"_s;
    // The answer to a call comes after the signal has left.
    bus.call(QDBusMessage::createMethodCall(driver, u"/"_s, driver, u"GetId"_s));
    QDBusConnection::disconnectFromBus(u"announcer"_s);
}
