#include "platform/linux/application/QtDisplayWatch.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>

#include <unistd.h>
#include <utility>

namespace {

/// Qt's readers of a broken connection ask for it to be looked at once more, and a second complaint
/// from within the first one would not come to us.
class BrokenConnectionFilter : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        return event->type() == QEvent::MetaCall &&
               receiver->inherits("QtWaylandClient::QWaylandDisplay");
    }
};

} // namespace

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
        auto* const application = QCoreApplication::instance();
        application->installEventFilter(new BrokenConnectionFilter(application));
        instance->m_ways.goOnAfterCompositorLoss();
        return;
    }
    // Its other complaints are of no use to anybody.
    if (qstrcmp(context.category, "qt.qpa.wayland") != 0)
        instance->m_former(type, context, message);
}
