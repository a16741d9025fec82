#include "platform/linux/application/QtDisplayWatch.h"

#include <QCoreApplication>
#include <QThread>

#include <unistd.h>
#include <utility>

QtDisplayWatch* QtDisplayWatch::instance = nullptr;

QtDisplayWatch::QtDisplayWatch(Ways ways)
    : m_former(qInstallMessageHandler(hear)), m_ways(std::move(ways))
{
    instance = this;
}

QtDisplayWatch::~QtDisplayWatch()
{
    qInstallMessageHandler(m_former);
    instance = nullptr;
}

void QtDisplayWatch::hear(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (message.startsWith(u"The X11 connection broke")) {
        instance->m_ways.endAfterServerLoss();
        return;
    }
    // The other words come after an error of the protocol.
    if (message.startsWith(u"The Wayland connection broke") ||
        message.startsWith(u"The Wayland connection experienced a fatal error")) {
        if (QThread::currentThread() != QCoreApplication::instance()->thread()) {
            for (;;)
                pause(); // a thread that only reads for Qt, and would end the process
        }
        instance->m_ways.goOnAfterCompositorLoss();
        return;
    }
    instance->m_former(type, context, message);
}
