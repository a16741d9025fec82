#pragma once

#include <QtGlobal>

#include <functional>

/// Qt has a connection to the display of its own, and ends the process when that breaks: an X
/// server's with exit(), which takes down what other threads are in the middle of using, a
/// compositor's with _exit(). The only word on it is what it prints right before. There is one
/// watch in a process.
class QtDisplayWatch {
public:
    /// Both are called in the middle of that, on the main thread, and do not return.
    struct Ways {
        std::function<void()> endAfterServerLoss;
        std::function<void()> goOnAfterCompositorLoss;
    };
    explicit QtDisplayWatch(Ways ways);
    ~QtDisplayWatch();
    QtDisplayWatch(const QtDisplayWatch&) = delete;
    QtDisplayWatch& operator=(const QtDisplayWatch&) = delete;

private:
    static void hear(QtMsgType type, const QMessageLogContext& context, const QString& message);

    QtMessageHandler m_former;
    Ways m_ways;
    static QtDisplayWatch* instance;
};
