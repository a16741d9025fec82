#include "platform/Application.h"

#include "platform/linux/TerminationSignals.h"
#include "platform/linux/dbus/SessionInstance.h"
#include "platform/linux/x11/X11Handles.h"

#include <QApplication>
#include <QScreen>
#include <QTimer>

#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>

using namespace std::chrono_literals;

namespace {

/// Windows are X11's so far, in a Wayland session too (XWayland). Qt would abort where there is
/// no display; a sentence is kinder.
void requireDisplay()
{
    if (xcb_connection_has_error(X11ConnectionHandle(xcb_connect(nullptr, nullptr)).get())) {
        std::fputs(
            "TavelorHelper needs an X11 display; DISPLAY names none that answers.\n", stderr);
        std::exit(EXIT_FAILURE); // NOLINT(concurrency-mt-unsafe): no thread has been started
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "xcb");
}

} // namespace

class Application::Body {
public:
    Body(int& argc, char** argv, Application& application)
        : qt((requireDisplay(), argc), argv),
          terminationSignals([&application] { application.terminate(); })
    {
    }

    QApplication qt;
    TerminationSignals terminationSignals;
    QTimer screenChanges; // running while changes still come
};

Application::Application(int& argc, char** argv) : m_body(std::make_unique<Body>(argc, argv, *this))
{
    std::setlocale(LC_NUMERIC, "C"); // NOLINT(concurrency-mt-unsafe): libmpv insists on it
    QGuiApplication::setQuitOnLastWindowClosed(false);

    if (SessionInstance::claim() == SessionInstance::Claim::Taken) {
        std::fputs("TavelorHelper is already running in this session.\n", stderr);
        std::exit(EXIT_SUCCESS); // NOLINT(concurrency-mt-unsafe)
    }

    auto& screenChanges = m_body->screenChanges;
    screenChanges.setSingleShot(true);
    screenChanges.setInterval(100ms);
    connect(&screenChanges, &QTimer::timeout, this, &Application::didChangeScreenParameters);

    const auto noteChange = [&screenChanges] { screenChanges.start(); };
    const auto follow = [this, noteChange](QScreen* screen) {
        connect(screen, &QScreen::geometryChanged, this, noteChange);
    };
    const auto screens = QGuiApplication::screens();
    for (auto* const screen : screens)
        follow(screen);
    connect(
        &m_body->qt, &QGuiApplication::screenAdded, this, [follow, noteChange](QScreen* screen) {
            follow(screen);
            noteChange();
        });
    connect(&m_body->qt, &QGuiApplication::screenRemoved, this, noteChange);
    // A session that ends tells Qt, which quits: the same way out for all.
    connect(&m_body->qt, &QCoreApplication::aboutToQuit, this, &Application::willTerminate);
}

Application::~Application() = default;

int Application::run()
{
    QTimer::singleShot(0ms, this, &Application::didFinishLaunching);
    return QApplication::exec();
}

void Application::terminate()
{
    QCoreApplication::quit();
}
