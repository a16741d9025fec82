#include "platform/linux/application/QtDisplayWatch.h"

#include <QString>

#include <utility>

QtDisplayWatch* QtDisplayWatch::instance = nullptr;

QtDisplayWatch::QtDisplayWatch(std::function<void()> endProcess)
    : m_former(qInstallMessageHandler(hear)), m_endProcess(std::move(endProcess))
{
    instance = this;
}

QtDisplayWatch::~QtDisplayWatch()
{
    qInstallMessageHandler(m_former);
    instance = nullptr;
}

/// What Qt says right before it ends the process is the only word on it.
void QtDisplayWatch::hear(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (message.startsWith(u"The X11 connection broke"))
        instance->m_endProcess();
    else
        instance->m_former(type, context, message);
}
