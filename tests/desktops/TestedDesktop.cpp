#include "desktops/TestedDesktop.h"

#include "desktops/Descendants.h"
#include "desktops/Picture.h"
#include "support/ChildProcess.h"
#include "support/TemporaryHome.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDir>
#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;

TestedDesktop::TestedDesktop(const DesktopDescription& description) : m_description(description)
{
    const auto runtime = home() + u"/runtime"_s;
    for (const auto& folder : {runtime, home() + u"/Desktop"_s})
        QDir().mkpath(folder);
    QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    for (const auto& file : description.files)
        TemporaryHome::writeFile(home() + u'/' + file.path, file.contents);
    m_additions.insert(u"HOME"_s, home());
    m_additions.insert(u"XDG_RUNTIME_DIR"_s, runtime);
    m_additions.insert(u"XDG_DATA_HOME"_s, home() + u"/.local/share"_s);
    m_additions.insert(u"XDG_CONFIG_HOME"_s, home() + u"/.config"_s);
    m_additions.insert(u"XDG_CACHE_HOME"_s, home() + u"/.cache"_s);
}

TestedDesktop::~TestedDesktop()
{
    uncoverAll();
    killProgram();
    Descendants::endAll();
}

void TestedDesktop::setMonitors(VirtualDesktop::Monitors monitors)
{
    desktop().setMonitors(monitors);
}

QRect TestedDesktop::workArea() const
{
    return screen().picture().rect().adjusted(0, 0, 0, -m_description.panelHeight);
}

void TestedDesktop::announceEnvironment()
{
    auto environment = desktop().environment();
    environment.insert(m_additions);
    QMap<QString, QString> variables;
    for (const auto& name : environment.keys())
        variables.insert(name, environment.value(name));
    qDBusRegisterMetaType<QMap<QString, QString>>();
    const auto driver = u"org.freedesktop.DBus"_s;
    auto call = QDBusMessage::createMethodCall(
        driver, u"/org/freedesktop/DBus"_s, driver, u"UpdateActivationEnvironment"_s);
    call << QVariant::fromValue(variables);
    QDBusConnection::connectToBus(desktop().busAddress(), u"environment"_s).call(call);
    QDBusConnection::disconnectFromBus(u"environment"_s);
}

void TestedDesktop::startProgram()
{
    auto environment = desktop().environment();
    environment.insert(m_additions);
    m_program.setProcessEnvironment(environment);
    m_program.setStandardOutputFile(QProcess::nullDevice());
    m_program.setStandardErrorFile(QProcess::nullDevice());
    ChildProcess::endWithThisProcess(m_program);
    m_program.startCommand(m_description.desktopProgram);
}

void TestedDesktop::killProgram()
{
    m_program.kill();
    m_program.waitForFinished();
}

bool TestedDesktop::waitUntilAtRest() const
{
    const auto isThere = [this] { return isShellThere(); };
    if (!QTest::qWaitFor(isThere, 30'000))
        return false;
    auto picture = screen().picture();
    auto used = Descendants::processorSeconds(shellProcess());
    QElapsedTimer patience;
    QElapsedTimer rest;
    patience.start();
    rest.start();
    while (rest.elapsed() < 1000 && patience.elapsed() < 30'000) {
        QTest::qWait(100);
        const auto laterPicture = screen().picture();
        const auto laterUse = Descendants::processorSeconds(shellProcess());
        constexpr auto idle = 0.05; // of a core, more or less: one takes a picture of it meanwhile
        const auto change = Picture::difference(picture, laterPicture, workArea());
        if (change.pixels > 0 || laterUse - used > idle) {
            picture = laterPicture;
            used = laterUse;
            rest.restart();
        }
    }
    return patience.elapsed() < 30'000;
}

void TestedDesktop::coverAll()
{
    auto environment = desktop().environment();
    environment.insert(m_additions);
    m_cover.setProcessEnvironment(environment);
    ChildProcess::endWithThisProcess(m_cover);
    const bool isWayland = environment.contains(u"WAYLAND_DISPLAY"_s);
    const auto options =
        u"--no-config --no-terminal --load-scripts=no --vo=%1 --fullscreen --pause "
        "--keepaspect=no --osc=no --no-input-default-bindings "
        "av://lavfi:color=c=lime:s=64x64"_s;
    m_cover.start(
        u"mpv"_s, options.arg(isWayland ? u"wlshm"_s : u"x11"_s).split(u' ', Qt::SkipEmptyParts));
}

void TestedDesktop::uncoverAll()
{
    m_cover.kill();
    m_cover.waitForFinished();
}
