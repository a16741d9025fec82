#include "platform/Workspace.h"

#include "platform/linux/workspace/DesktopEntry.h"
#include "platform/linux/workspace/GioThread.h"
#include "platform/linux/workspace/LoginListener.h"

#include <QDesktopServices>
#include <QLoggingCategory>

class Workspace::Body {
public:
    explicit Body(Workspace& workspace)
    {
        m_gio.post([this, &workspace] {
            const auto post = [&workspace](auto message) {
                QMetaObject::invokeMethod(&workspace, message, Qt::QueuedConnection);
            };
            m_login = std::make_unique<LoginListener>(LoginListener::Handlers{
                [post, &workspace] { post([&workspace] { Q_EMIT workspace.didWake(); }); },
                [post, &workspace](bool isLocked) {
                    post([&workspace, isLocked] { Q_EMIT workspace.sessionLockChanged(isLocked); });
                },
            });
        });
    }

    void post(std::function<void()> task) { m_gio.post(std::move(task)); }

private:
    std::unique_ptr<LoginListener> m_login; // used on the thread, freed when that has ended
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

Workspace::Workspace() : m_body(std::make_unique<Body>(*this)) {}

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
