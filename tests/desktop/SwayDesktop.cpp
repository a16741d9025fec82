#include "desktop/SwayDesktop.h"

#include "support/ChildProcess.h"
#include "support/TemporaryHome.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QRect whole{0, 0, 1280, 720};
constexpr uid_t nobody = 65534;

} // namespace

SwayDesktop::SwayDesktop() : VirtualDesktop(whole.size()), m_outputs{{u"X11-1"_s, {}}}
{
    // sway uses those atoms only that the server has when it starts.
    for (const auto* name : {"WM_PROTOCOLS", "WM_DELETE_WINDOW"})
        m_screen.atom(name);
    start();
    setMonitors(Monitors::One);
}

SwayDesktop::~SwayDesktop()
{
    uncover();
    stop(m_sway);
}

void SwayDesktop::start()
{
    // No background: sway 1.7 draws a layer's younger windows below its older ones, so the
    // background's would hide every wallpaper.
    QString config = u"xwayland disable\ndefault_border none\n"_s;
    for (std::size_t i = 0; i < m_outputs.size(); ++i) {
        m_outputs[i].name = u"X11-%1"_s.arg(i + 1);
        if (!m_outputs[i].settings.isEmpty())
            config += u"output %1 %2\n"_s.arg(m_outputs[i].name, m_outputs[i].settings);
    }
    TemporaryHome::writeFile(path(u"config"_s), config.toUtf8());
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove(u"WAYLAND_DISPLAY"_s);
    environment.insert(u"DISPLAY"_s, m_screen.display());
    environment.insert(u"HOME"_s, m_folder.path());
    environment.insert(u"XDG_RUNTIME_DIR"_s, m_folder.path());
    environment.insert(u"SWAYSOCK"_s, path(u"sway"_s));
    environment.insert(u"WLR_BACKENDS"_s, u"x11"_s);
    environment.insert(u"WLR_RENDERER"_s, u"pixman"_s);
    environment.insert(u"WLR_X11_OUTPUTS"_s, QString::number(m_outputs.size()));
    m_sway.setProcessEnvironment(environment);

    QStringList program{u"sway"_s, u"--config"_s, path(u"config"_s)};
    ChildProcess::endWithThisProcess(m_sway);
    if (geteuid() == 0) { // as which sway refuses to run
        for (const auto& file : {m_folder.path(), path(u"config"_s)}) {
            if (chown(qUtf8Printable(file), nobody, nobody) != 0)
                qFatal("%s cannot be given away.", qUtf8Printable(file));
        }
        // With another user the signal for our end is lost.
        const auto user = u"setpriv --reuid=%1 --regid=%1 --clear-groups --pdeathsig=KILL"_s;
        program = user.arg(nobody).split(u' ') + program;
    }
    QFile::remove(path(u"sway"_s)); // sway takes another name for its socket than one that exists
    m_sway.start(program.takeFirst(), program);
    if (!QTest::qWaitFor(
            [this] { return outputNames().size() == static_cast<qsizetype>(m_outputs.size()); },
            20'000))
        qFatal("sway: %s", m_sway.readAllStandardError().constData());
}

void SwayDesktop::kill()
{
    m_sway.kill();
    m_sway.waitForFinished();
}

QByteArray SwayDesktop::swaymsg(const QStringList& arguments) const
{
    QProcess process;
    process.start(u"swaymsg"_s, QStringList{u"-r"_s, u"-s"_s, path(u"sway"_s)} + arguments);
    process.waitForFinished();
    return process.readAllStandardOutput();
}

void SwayDesktop::command(const QString& command) const
{
    const auto answer = swaymsg({u"--"_s, command});
    if (!answer.contains("\"success\": true"))
        qFatal("%s: %s", qUtf8Printable(command), answer.constData());
}

QStringList SwayDesktop::outputNames() const
{
    if (!QFile::exists(path(u"sway"_s)))
        return {};
    QStringList names;
    const auto outputs = QJsonDocument::fromJson(swaymsg({u"-t"_s, u"get_outputs"_s})).array();
    for (const auto& output : outputs)
        names << output.toObject().value(u"name").toString();
    return names;
}

void SwayDesktop::nameDisplay(QProcessEnvironment& environment) const
{
    // A path, so that processes may have a runtime folder of their own.
    environment.insert(u"WAYLAND_DISPLAY"_s, path(u"wayland-1"_s));
}

void SwayDesktop::setMonitors(Monitors monitors)
{
    const auto size = [](int width) {
        return u"mode --custom %1x%2"_s.arg(width).arg(whole.height());
    };
    constexpr auto half = whole.width() / 2;
    if (monitors != Monitors::TwoHalves && m_outputs.size() == 2)
        unplug();
    configure(0, u"position 0 0 "_s + size(monitors == Monitors::One ? whole.width() : half));
    if (monitors == Monitors::TwoHalves && m_outputs.size() == 1)
        plug(u"position %1 0 "_s.arg(half) + size(half));
}

void SwayDesktop::plug(const QString& settings)
{
    const auto before = outputNames();
    command(u"create_output"_s);
    auto names = outputNames();
    names.removeIf([&before](const auto& name) { return before.contains(name); });
    m_outputs.push_back({names.value(0), {}});
    configure(m_outputs.size() - 1, settings);
}

void SwayDesktop::unplug()
{
    m_screen.requestToCloseTopmost();
    m_outputs.pop_back();
    if (!QTest::qWaitFor(
            [this] { return outputNames().size() == static_cast<qsizetype>(m_outputs.size()); }))
        qFatal("The output stays.");
}

void SwayDesktop::configure(std::size_t output, const QString& settings)
{
    auto& configured = m_outputs[output];
    configured.settings = settings;
    command(u"output %1 %2"_s.arg(configured.name, settings));
}

QColor SwayDesktop::bareColour() const
{
    return {0x3f, 0x3f, 0x3f};
}

std::optional<QColor> SwayDesktop::pixel(const QPoint& point) const
{
    const auto image = grim({u"-g"_s, u"%1,%2 1x1"_s.arg(point.x()).arg(point.y())});
    return image.isNull() ? std::nullopt : std::optional(image.pixelColor(0, 0));
}

QImage SwayDesktop::picture(std::size_t output) const
{
    return grim({u"-o"_s, m_outputs[output].name});
}

QImage SwayDesktop::grim(const QStringList& area) const
{
    QProcess process;
    process.setProcessEnvironment(environment());
    process.start(u"grim"_s, QStringList{u"-t"_s, u"ppm"_s} + area + QStringList{u"-"_s});
    process.waitForFinished();
    return QImage::fromData(process.readAllStandardOutput(), "PPM");
}

void SwayDesktop::click(const QPoint& point)
{
    for (const auto& what :
        {u"set %1 %2"_s.arg(point.x()).arg(point.y()), u"press button1"_s, u"release button1"_s})
        command(u"seat seat0 cursor "_s + what);
}

void SwayDesktop::cover(const QColor& colour, Extent extent)
{
    // The only window is as large as the output. Sway tells nobody that it is covered, but for full
    // screen.
    if (extent == Extent::All)
        command(u"for_window [app_id=mpv] fullscreen enable"_s);
    m_cover.setProcessEnvironment(environment());
    ChildProcess::endWithThisProcess(m_cover);
    const auto options = u"--no-config --no-terminal --load-scripts=no --vo=wlshm --keepaspect=no "
                         "--loop-file=inf av://lavfi:color=c=%1:s=64x64"_s;
    m_cover.start(u"mpv"_s, options.arg(colour.name()).split(u' '));
}

void SwayDesktop::uncover()
{
    m_cover.kill();
    m_cover.waitForFinished();
}
