#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

#include <memory>

/// What the desktop session tells every program, and what it does for any of them. Main thread
/// only; no call waits, for the system's services neither.
class Workspace : public QObject {
    Q_OBJECT

public:
    static Workspace& shared();

    Workspace();
    ~Workspace() override;

    /// Starts the application that the system knows under that identifier: on Linux the desktop
    /// entry `<identifier>.desktop`. It outlives this process, and what it prints goes nowhere.
    /// One that is missing or does not start is passed over in silence.
    void launchApplication(const QString& identifier);

    /// Shows a page in the user's browser. Silent where there is none. Needs an application object
    /// with a display.
    void openUrl(const QUrl& url);

Q_SIGNALS:
    /// Another space (virtual desktop) is shown now. Emitted by the application, which hears it
    /// from the display.
    void activeSpaceDidChange();

    /// The machine has been asleep and runs again. On Linux this is `PrepareForSleep(false)` of
    /// systemd-logind
    /// (https://www.freedesktop.org/software/systemd/man/org.freedesktop.login1.html); both it and
    /// the system bus may be missing, go and come back.
    void didWake();

    /// The session is locked now, or unlocked, which it is at first. On Linux this is the property
    /// `LockedHint` that lockers set at systemd-logind.
    void sessionLockChanged(bool isLocked);

private:
    class Body;
    std::unique_ptr<Body> m_body;
};
