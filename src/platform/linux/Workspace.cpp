#include "platform/Workspace.h"

#include "platform/linux/gio/DesktopEntry.h"
#include "platform/linux/gio/GioThread.h"
#include "platform/linux/gio/SleepListener.h"
#include "platform/linux/x11/X11Connection.h"

#include <QDesktopServices>
#include <QLoggingCategory>

class Workspace::Body {
public:
    explicit Body(Workspace& workspace)
    {
        m_gio.post([this, &workspace] {
            m_sleep = std::make_unique<SleepListener>([&workspace] {
                QMetaObject::invokeMethod(&workspace, &Workspace::didWake, Qt::QueuedConnection);
            });
        });
    }

    void post(std::function<void()> task) { m_gio.post(std::move(task)); }

private:
    std::unique_ptr<SleepListener> m_sleep; // used on the thread, freed when that has ended
    GioThread m_gio;
};

namespace {

/// Qt complains on standard error when it finds no browser.
class SilentQt {
public:
    SilentQt() { category().setEnabled(QtWarningMsg, false); }
    ~SilentQt() { category().setEnabled(QtWarningMsg, m_wasEnabled); }
    SilentQt(const SilentQt&) = delete;
    SilentQt& operator=(const SilentQt&) = delete;

private:
    static QLoggingCategory& category() { return *QLoggingCategory::defaultCategory(); }

    bool m_wasEnabled = category().isWarningEnabled();
};

} // namespace

Workspace& Workspace::shared()
{
    static Workspace workspace;
    return workspace;
}

Workspace::Workspace() : m_body(std::make_unique<Body>(*this))
{
    auto* const x11 = X11Connection::shared();
    if (!x11)
        return;
    connect(x11, &X11Connection::rootPropertyChanged, this, [this, x11](quint32 atom) {
        if (atom == x11->atom("_NET_CURRENT_DESKTOP"))
            Q_EMIT activeSpaceDidChange();
    });
}

Workspace::~Workspace() = default;

void Workspace::launchApplication(const QString& identifier)
{
    m_body->post([identifier] { DesktopEntry::launch(identifier); });
}

void Workspace::openUrl(const QUrl& url)
{
    const SilentQt silence;
    QDesktopServices::openUrl(url);
}
