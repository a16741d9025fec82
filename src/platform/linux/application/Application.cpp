#include "platform/Application.h"

#include "base/Debounce.h"
#include "base/NotificationCenter.h"
#include "platform/SessionInstance.h"
#include "platform/Workspace.h"
#include "platform/linux/application/DisplayChoice.h"
#include "platform/linux/application/ProcessEnd.h"
#include "platform/linux/application/QtDisplayWatch.h"
#include "platform/linux/dbus/HelperStatusObject.h"
#include "platform/linux/dbus/ScreenSaverListener.h"
#include "platform/linux/system/TerminationSignals.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

[[noreturn]] void endWithoutDisplay()
{
    std::fputs("TavelorHelper needs a display; neither WAYLAND_DISPLAY nor DISPLAY names one that "
               "answers.\n",
        stderr);
    std::_Exit(EXIT_FAILURE); // nothing is there yet that has an end
}

/// Qt would abort where there is no display, and wait for ever for one that does not answer; a
/// sentence is kinder.
void requireDisplay()
{
    if (!DisplayChoice::isAnyThere())
        endWithoutDisplay();
}

/// Keeps the memory of one video from staying with the process when the next one plays. Pictures
/// are megabytes: beyond a fixed size (glibc would raise it by itself) they go back to the system
/// as they are freed, and the decoder's threads share their heaps.
void limitRetainedMemory()
{
    constexpr int pictureSize = 256 * 1024;
    mallopt(M_MMAP_THRESHOLD, pictureSize);
    mallopt(M_TRIM_THRESHOLD, pictureSize);
    mallopt(M_ARENA_MAX, 2);
}

int& prepare(int& argc)
{
    limitRetainedMemory();
    requireDisplay();
    return argc;
}

/// Says so once, whoever notices first.
void reportLoss()
{
    static bool hasReported = false;
    if (!std::exchange(hasReported, true))
        std::fputs("The X server has closed the connection.\n", stderr);
}

void reportProblem(const DisplayServer& display)
{
    const auto problem = display.problem();
    if (!problem.isEmpty())
        std::fprintf(stderr, "%s\n", qUtf8Printable(problem));
}

QString nameOf(DisplayServer::ScreenState state)
{
    switch (state) {
    case DisplayServer::ScreenState::Unused:
        return u"unused"_s;
    case DisplayServer::ScreenState::Closed:
        return u"closed"_s;
    case DisplayServer::ScreenState::Covered:
        return u"covered"_s;
    case DisplayServer::ScreenState::Shown:
        return u"shown"_s;
    }
    return {};
}

QString nameOf(const Holds& holds)
{
    using Reason = Holds::Reason;
    if (holds.has(Reason::SessionLocked) || holds.has(Reason::ScreenSaver))
        return u"locked"_s;
    if (holds.has(Reason::Blanked))
        return u"blanked"_s;
    return holds.has(Reason::Unseen) ? u"covered"_s : QString();
}

DisplayFacts factsOf(DisplayServer& display, const std::vector<Screen>& screens)
{
    DisplayFacts facts;
    facts.canShow = display.canPresent();
    facts.problem = display.problem();
    facts.hold = nameOf(display.holds());
    for (const auto& screen : screens)
        facts.monitors[screen.name] = nameOf(display.screenState(screen.name));
    if (facts.hold.isEmpty() && !facts.monitors.values().contains(u"shown"_s))
        facts.hold = u"covered"_s;
    facts.renderer = display.rendererName();
    const auto& statistics = display.statistics();
    facts.decoder = statistics.decoder;
    facts.framesShown = statistics.shown;
    facts.framesDropped = statistics.dropped;
    return facts;
}

} // namespace

class Application::Body {
public:
    Body(int& argc, char** argv, Application& application);

    QtDisplayWatch qtDisplay;
    QApplication qt;
    TerminationSignals terminationSignals;
    std::unique_ptr<DisplayServer> display;
    std::vector<Screen> screens; // as the delegate knows them
    Debounce screenChanges;
    ScreenSaverListener screenSavers;

    void holdWhileLocked();

private:
    void tellScreenChange(Application& application);
    [[noreturn]] void goOnWithoutQtDisplay(Application& application) const;
};

Application::Body::Body(int& argc, char** argv, Application& application)
    : qtDisplay({
          [&application] {
              reportLoss();
              Q_EMIT application.willTerminate();
              endProcess(EXIT_FAILURE);
          },
          [this, &application] { goOnWithoutQtDisplay(application); },
      }),
      qt(prepare(argc), argv),
      terminationSignals([&application] { application.terminate(); }),
      display(DisplayChoice::make()),
      screenChanges(100ms, [this, &application] { tellScreenChange(application); })
{
}

void Application::Body::holdWhileLocked()
{
    auto& holds = display->holds();
    QObject::connect(
        &Workspace::shared(), &Workspace::sessionLockChanged, &holds, [&holds](bool isLocked) {
            holds.set(Holds::Reason::SessionLocked, isLocked);
        });
    QObject::connect(&screenSavers, &ScreenSaverListener::changed, &holds, [this, &holds] {
        holds.set(Holds::Reason::ScreenSaver, screenSavers.isActive());
    });
}

void Application::Body::tellScreenChange(Application& application)
{
    if (auto now = Screen::screens(); now != std::exchange(screens, now)) {
        Q_EMIT application.didChangeScreenParameters();
        NotificationCenter::defaultCenter().post(didChangeScreenParametersNotification());
    }
}

/// Qt cannot take up a new connection (6.4). The wallpaper, the menu on the session bus and the
/// rest do not need Qt's; only windows for people are not shown any more. So the loop goes on from
/// within the call that would have ended the process.
void Application::Body::goOnWithoutQtDisplay(Application& application) const
{
    if (!display || !display->outlivesItsServer()) {
        std::fputs("The Wayland compositor has closed the connection.\n", stderr);
        Q_EMIT application.willTerminate();
        endProcess(EXIT_FAILURE);
    }
    // Qt would look at its connection again with every turn.
    QObject::disconnect(QAbstractEventDispatcher::instance(), nullptr, nullptr, nullptr);
    display->followDispatcher();
    const int status = QEventLoop().exec();
    Q_EMIT application.willTerminate();
    endProcess(status);
}

Application::Application(int& argc, char** argv) : m_body(std::make_unique<Body>(argc, argv, *this))
{
    if (!m_body->display)
        endWithoutDisplay();         // it has gone meanwhile
    std::setlocale(LC_NUMERIC, "C"); // NOLINT(concurrency-mt-unsafe): libmpv insists on it
    QGuiApplication::setQuitOnLastWindowClosed(false);

    if (SessionInstance::claim() == SessionInstance::Claim::Taken) {
        std::fputs("TavelorHelper is already running in this session.\n", stderr);
        std::exit(EXIT_SUCCESS); // NOLINT(concurrency-mt-unsafe)
    }
    followDisplay();
    connect(&m_body->qt,
        &QGuiApplication::applicationStateChanged,
        this,
        [this](Qt::ApplicationState state) {
            if (state == Qt::ApplicationInactive)
                Q_EMIT didResignActive();
        });
    // A session that ends tells Qt, which quits: the same way out for all.
    connect(&m_body->qt, &QCoreApplication::aboutToQuit, this, &Application::willTerminate);
}

void Application::followDisplay()
{
    auto* const display = m_body->display.get();
    m_body->screens = display->screens();
    connect(
        display, &DisplayServer::screensChanged, this, [this] { m_body->screenChanges.call(); });
    connect(display, &DisplayServer::occlusionChanged, this, &Application::didChangeOcclusionState);
    connect(display,
        &DisplayServer::activeSpaceChanged,
        &Workspace::shared(),
        &Workspace::activeSpaceDidChange);
    connect(display, &DisplayServer::problemChanged, this, [display] { reportProblem(*display); });
    connect(display, &DisplayServer::lost, this, [] {
        reportLoss();
        QCoreApplication::exit(EXIT_FAILURE);
    });
    reportProblem(*display);
    m_body->holdWhileLocked();

    auto& status = HelperStatusObject::shared();
    status.setDisplayFacts([this, display] { return factsOf(*display, m_body->screens); });
    const auto update = [&status] { status.update(); };
    connect(display, &FrameOutput::statusChanged, &status, update);
    connect(display, &DisplayServer::problemChanged, &status, update);
    connect(this, &Application::didChangeScreenParameters, &status, update);
    connect(&display->holds(), &Holds::changed, &status, update);
}

Application::~Application() = default;

QString Application::didChangeScreenParametersNotification()
{
    return u"NSApplicationDidChangeScreenParametersNotification"_s;
}

void Application::run()
{
    QTimer::singleShot(0ms, this, &Application::didFinishLaunching);
    endProcess(QApplication::exec());
}

void Application::terminate()
{
    QCoreApplication::quit();
}
