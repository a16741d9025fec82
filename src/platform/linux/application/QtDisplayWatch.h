#pragma once

#include <QtGlobal>

#include <functional>

/// Qt has a connection to the display of its own. When that notices first that the display is
/// gone, Qt would end the process with exit(), which takes down what other threads are in the
/// middle of using. There is one watch in a process.
class QtDisplayWatch {
public:
    /// `endProcess` is called in place of that, and does not return.
    explicit QtDisplayWatch(std::function<void()> endProcess);
    ~QtDisplayWatch();
    QtDisplayWatch(const QtDisplayWatch&) = delete;
    QtDisplayWatch& operator=(const QtDisplayWatch&) = delete;

private:
    static void hear(QtMsgType type, const QMessageLogContext& context, const QString& message);

    QtMessageHandler m_former;
    std::function<void()> m_endProcess;
    static QtDisplayWatch* instance;
};
