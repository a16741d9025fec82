#include "desktop/VirtualDesktop.h"

#include "desktop/SwayDesktop.h"
#include "desktop/X11Desktop.h"
#include "support/ChildProcess.h"

#include <csignal>

using namespace Qt::StringLiterals;

std::unique_ptr<VirtualDesktop> VirtualDesktop::create()
{
    if (qEnvironmentVariable("TAVELOR_TEST_DESKTOP") == u"sway")
        return std::make_unique<SwayDesktop>();
    auto desktop = std::make_unique<X11Desktop>();
    desktop->startWindowManager();
    return desktop;
}

VirtualDesktop::VirtualDesktop(const QSize& size) : m_size(size)
{
    m_busAddress =
        start(m_bus, u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address=1"_s});
}

VirtualDesktop::~VirtualDesktop()
{
    stop(m_bus);
}

QProcessEnvironment VirtualDesktop::environment() const
{
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const auto& name : {u"QT_QPA_PLATFORM"_s, u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s})
        environment.remove(name);
    nameDisplay(environment);
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, m_busAddress);
    return environment;
}

void VirtualDesktop::stopBus()
{
    stop(m_bus);
}

QString VirtualDesktop::colour(const QPoint& point) const
{
    const auto seen = pixel(point);
    if (!seen || *seen == bareColour())
        return u"bare"_s;
    // Within what YUV and its standards make of a pure colour.
    const auto pure = [](int value) { return value <= 40 ? 0 : value >= 215 ? 255 : value; };
    const QColor named{pure(seen->red()), pure(seen->green()), pure(seen->blue())};
    for (const auto* name :
        {"red", "lime", "blue", "yellow", "magenta", "cyan", "white", "black"}) {
        if (named == QColor{QLatin1String(name)})
            return QLatin1String(name);
    }
    return seen->name();
}

QString VirtualDesktop::start(
    QProcess& process, const QString& program, const QStringList& arguments)
{
    ChildProcess::endWithThisProcess(process, SIGTERM); // it tidies up then
    process.start(program, arguments);
    QByteArray line;
    while (!line.endsWith('\n')) {
        if (!process.waitForReadyRead(20'000))
            qFatal("%s: %s", qUtf8Printable(program), process.readAllStandardError().constData());
        line += process.readLine();
    }
    return QString::fromLatin1(line.trimmed());
}

void VirtualDesktop::stop(QProcess& process)
{
    process.terminate();
    if (!process.waitForFinished(5000)) {
        process.kill();
        process.waitForFinished();
    }
}
