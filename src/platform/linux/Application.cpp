#include "platform/Application.h"

#include "base/NotificationCenter.h"
#include "platform/SessionInstance.h"
#include "platform/linux/TerminationSignals.h"
#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/X11Handles.h"
#include "platform/linux/x11/X11Occlusion.h"

#include <QApplication>
#include <QScreen>
#include <QTimer>

#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

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
}

/// Qt's idea of the screens has to be the windows' own, whatever platform people prefer for their
/// other programs; those that are launched from here keep theirs.
class X11Platform {
public:
    X11Platform() { qputenv(variable, "xcb"); }
    ~X11Platform()
    {
        if (m_preferred.isNull())
            qunsetenv(variable);
        else
            qputenv(variable, m_preferred);
    }
    X11Platform(const X11Platform&) = delete;
    X11Platform& operator=(const X11Platform&) = delete;

private:
    static constexpr auto variable = "QT_QPA_PLATFORM";
    QByteArray m_preferred = qgetenv(variable);
};

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

/// Ends the process as it is. Taking everything down would wait for decoders, and for name servers
/// that do not answer, to no end: all has been said and saved, and the system takes back the rest.
[[noreturn]] void endProcess(int status)
{
    std::fflush(nullptr);
#ifdef __SANITIZE_ADDRESS__
    __lsan_do_leak_check(); // which otherwise runs when all has been taken down
#endif
    std::_Exit(status);
}

/// Qt has a connection of its own. When that notices first that the server is gone, it would end
/// the process with exit(), which takes down what other threads are in the middle of using.
class QtDisplayWatch {
public:
    explicit QtDisplayWatch(Application& application)
    {
        watched = &application;
        formerHandler = qInstallMessageHandler(hear);
    }
    ~QtDisplayWatch() { qInstallMessageHandler(formerHandler); }
    QtDisplayWatch(const QtDisplayWatch&) = delete;
    QtDisplayWatch& operator=(const QtDisplayWatch&) = delete;

private:
    static void hear(QtMsgType type, const QMessageLogContext& context, const QString& message)
    {
        if (!message.startsWith(u"The X11 connection broke")) {
            formerHandler(type, context, message);
            return;
        }
        X11Connection::reportLoss();
        Q_EMIT watched->willTerminate();
        endProcess(EXIT_FAILURE);
    }

    static inline Application* watched = nullptr;
    static inline QtMessageHandler formerHandler = nullptr;
};

int& prepare(int& argc)
{
    limitRetainedMemory();
    requireDisplay();
    return argc;
}

} // namespace

class Application::Body {
public:
    Body(int& argc, char** argv, Application& application)
        : displayWatch(application),
          qt(prepare(argc), argv),
          terminationSignals([&application] { application.terminate(); })
    {
    }

    QtDisplayWatch displayWatch;
    QApplication qt;
    TerminationSignals terminationSignals;
    QTimer screenChanges; // running while changes still come
};

Application::Application(int& argc, char** argv)
{
    {
        const X11Platform platform;
        m_body = std::make_unique<Body>(argc, argv, *this);
    }
    std::setlocale(LC_NUMERIC, "C"); // NOLINT(concurrency-mt-unsafe): libmpv insists on it
    QGuiApplication::setQuitOnLastWindowClosed(false);

    if (SessionInstance::claim() == SessionInstance::Claim::Taken) {
        std::fputs("TavelorHelper is already running in this session.\n", stderr);
        std::exit(EXIT_SUCCESS); // NOLINT(concurrency-mt-unsafe)
    }

    auto& screenChanges = m_body->screenChanges;
    screenChanges.setSingleShot(true);
    screenChanges.setInterval(100ms);
    connect(&screenChanges, &QTimer::timeout, this, [this] {
        Q_EMIT didChangeScreenParameters();
        NotificationCenter::defaultCenter().post(didChangeScreenParametersNotification());
    });

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
    connect(&m_body->qt, &QGuiApplication::primaryScreenChanged, this, noteChange); // their order
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

Application::~Application() = default;

QString Application::didChangeScreenParametersNotification()
{
    return QStringLiteral("NSApplicationDidChangeScreenParametersNotification");
}

void Application::run()
{
    if (auto* const x11 = X11Connection::shared())
        connect(&X11Occlusion::shared(*x11),
            &X11Occlusion::changed,
            this,
            &Application::didChangeOcclusionState);
    QTimer::singleShot(0ms, this, &Application::didFinishLaunching);
    endProcess(QApplication::exec());
}

void Application::terminate()
{
    QCoreApplication::quit();
}
