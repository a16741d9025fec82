#include "desktop/SwayDesktop.h"
#include "desktops/NestedDesktop.h"
#include "desktops/TestedDesktop.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QRegularExpression>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

/// The shell is the desktop program, or else the window manager.
class X11TestedDesktop : public TestedDesktop {
public:
    explicit X11TestedDesktop(const DesktopDescription& description) : TestedDesktop(description)
    {
        announceEnvironment();
        m_desktop.startWindowManager(description.windowManager, additions());
        if (hasProgram())
            startProgram();
    }

    VirtualDesktop& desktop() override { return m_desktop; }
    const X11Desktop& screen() const override { return m_desktop; }

    void startShell() override
    {
        if (hasProgram())
            startProgram();
        else
            m_desktop.startWindowManager(description().windowManager, additions());
    }
    void killShell() override
    {
        if (hasProgram())
            killProgram();
        else
            m_desktop.killWindowManager();
    }

private:
    bool hasProgram() const { return !description().desktopProgram.isEmpty(); }
    bool isShellThere() const override
    {
        auto programs = m_desktop.desktopPrograms();
        programs.removeAll(u"tavelorhelper"_s);
        return !hasProgram() || !programs.isEmpty();
    }

    X11Desktop m_desktop;
};

/// The shell is the compositor.
class SwayTestedDesktop : public TestedDesktop {
public:
    explicit SwayTestedDesktop(const DesktopDescription& description) : TestedDesktop(description)
    {
    }

    VirtualDesktop& desktop() override { return m_desktop; }
    const X11Desktop& screen() const override { return m_desktop.screen(); }
    void startShell() override { m_desktop.start(); }
    void killShell() override { m_desktop.kill(); }

private:
    bool isShellThere() const override { return true; }

    SwayDesktop m_desktop;
};

/// The shell is the desktop program, if there is one.
class NestedTestedDesktop : public TestedDesktop {
public:
    explicit NestedTestedDesktop(const DesktopDescription& description)
        : TestedDesktop(description),
          m_desktop([this](int monitors, int width) { return compositor(monitors, width); },
              [this](const QByteArray& said) { return display(said); })
    {
        setMonitors(VirtualDesktop::Monitors::One);
    }

    VirtualDesktop& desktop() override { return m_desktop; }
    const X11Desktop& screen() const override { return m_desktop.screen(); }
    void setMonitors(VirtualDesktop::Monitors monitors) override
    {
        const auto before = m_desktop.compositorProcess();
        m_desktop.setMonitors(monitors);
        if (m_desktop.compositorProcess() == before)
            return;
        killProgram();
        announceEnvironment();
        startShell();
        waitUntilAtRest();
    }

    void startShell() override
    {
        if (!description().desktopProgram.isEmpty())
            startProgram();
    }
    void killShell() override { killProgram(); }

private:
    bool isKWin() const { return description().base == DesktopDescription::Base::KWin; }
    QString socket() const { return home() + u"/runtime/wayland"_s; }

    NestedDesktop::Compositor compositor(int monitors, int width) const
    {
        auto environment = additions();
        if (isKWin()) {
            // Of its name and without the file capability of the installed one, which an ordinary
            // user may not have everywhere.
            const auto copy = home() + u"/kwin_wayland"_s;
            QFile::copy(QStandardPaths::findExecutable(u"kwin_wayland"_s), copy);
            environment.insert(u"KWIN_COMPOSE"_s, u"Q"_s); // it draws by itself
            const auto arguments = u"--x11-display %1 --width %2 --height 720 --output-count %3 "
                                   "--socket %4 --no-lockscreen --no-global-shortcuts"_s;
            return {copy,
                arguments
                    .arg(screen().display(),
                        QString::number(width),
                        QString::number(monitors),
                        socket())
                    .split(u' '),
                environment,
                monitors,
                u"kscreen-doctor output.2.disable"_s,
                u"kscreen-doctor output.2.enable"_s};
        }
        environment.insert(u"MUTTER_DEBUG_DUMMY_MODE_SPECS"_s, u"%1x720"_s.arg(width));
        environment.insert(u"MUTTER_DEBUG_NUM_DUMMY_MONITORS"_s, QString::number(monitors));
        const auto arguments = u"--nested --wayland --wayland-display wayland"_s;
        return {u"mutter"_s, arguments.split(u' '), environment, 1, {}, {}};
    }

    QProcessEnvironment display(const QByteArray& said) const
    {
        QProcessEnvironment environment;
        if (!QFile::exists(socket()))
            return environment;
        if (isKWin()) {
            environment.insert(u"XDG_SESSION_TYPE"_s, u"wayland"_s); // by which Qt decides
        } else {
            static const QRegularExpression number(u"public X11 display (:[0-9]+)"_s);
            const auto match = number.match(QString::fromUtf8(said));
            const QDir runtime(home() + u"/runtime"_s);
            const auto authority =
                runtime.entryList({u".mutter-Xwaylandauth.*"_s}, QDir::Files | QDir::Hidden);
            if (!match.hasMatch() || authority.isEmpty())
                return environment;
            environment.insert(u"DISPLAY"_s, match.captured(1));
            environment.insert(u"XAUTHORITY"_s, runtime.filePath(authority.back()));
        }
        environment.insert(u"WAYLAND_DISPLAY"_s, socket());
        return environment;
    }

    bool isShellThere() const override
    {
        if (description().desktopProgram.isEmpty())
            return true;
        auto bus = QDBusConnection::connectToBus(m_desktop.busAddress(), u"shell"_s);
        const bool isThere = bus.interface()->isServiceRegistered(u"org.kde.plasmashell"_s);
        QDBusConnection::disconnectFromBus(u"shell"_s);
        return isThere;
    }

    NestedDesktop m_desktop;
};

} // namespace

std::unique_ptr<TestedDesktop> TestedDesktop::create(const DesktopDescription& description)
{
    std::unique_ptr<TestedDesktop> desktop;
    switch (description.base) {
    case DesktopDescription::Base::X11:
        desktop = std::make_unique<X11TestedDesktop>(description);
        break;
    case DesktopDescription::Base::Sway:
        desktop = std::make_unique<SwayTestedDesktop>(description);
        break;
    case DesktopDescription::Base::KWin:
    case DesktopDescription::Base::Mutter:
        desktop = std::make_unique<NestedTestedDesktop>(description);
        break;
    }
    if (!desktop->waitUntilAtRest())
        qFatal("%s does not come to rest.", qUtf8Printable(description.title));
    return desktop;
}
