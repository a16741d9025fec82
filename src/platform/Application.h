#pragma once

#include <QObject>
#include <QString>

#include <memory>

/// The application loop and the messages that it sends its delegate. Exactly one, made first in
/// `main`. SIGTERM, SIGINT and SIGHUP end the loop as `terminate()` does.
class Application : public QObject {
    Q_OBJECT

public:
    /// Exits with status 1 and one line on standard error where there is no display, and with
    /// status 0 and one line where this session already has a running instance.
    Application(int& argc, char** argv);
    ~Application() override;

    /// Posted on the process's default notification centre when the delegate has been told of the
    /// same.
    static QString didChangeScreenParametersNotification();

    /// Runs the loop, and ends the process after it.
    [[noreturn]] void run();
    void terminate();

Q_SIGNALS:
    void didFinishLaunching();
    /// A screen came, went or changed its frame. Changes that come together are told once.
    void didChangeScreenParameters();
    /// All of our desktop windows were covered by other windows, or one of them can be seen again.
    /// A while after the last change to other windows, a second at most after the first one. On
    /// X11 windows of Wayland programs are not known.
    void didChangeOcclusionState();
    /// None of the program's windows has the keyboard any more.
    void didResignActive();
    /// The last message; the process ends when it has been handled.
    void willTerminate();

private:
    void followDisplay();

    class Body;
    std::unique_ptr<Body> m_body;
};
