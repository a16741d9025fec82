#pragma once

#include <QObject>

#include <memory>

/// The application loop and the messages that it sends its delegate. Exactly one, made first in
/// `main` and destroyed last. SIGTERM, SIGINT and SIGHUP end the loop as `terminate()` does.
class Application : public QObject {
    Q_OBJECT

public:
    /// Exits with status 1 and one line on standard error where there is no display, and with
    /// status 0 and one line where this session already has a running instance.
    Application(int& argc, char** argv);
    ~Application() override;

    /// Runs the loop; returns the process's exit status.
    int run();
    void terminate();

Q_SIGNALS:
    void didFinishLaunching();
    /// A screen came, went or changed its frame. Changes that come together are told once.
    void didChangeScreenParameters();
    /// The last message; the process ends when it has been handled.
    void willTerminate();

private:
    class Body;
    std::unique_ptr<Body> m_body;
};
