#pragma once

#include "desktop/X11Desktop.h"
#include "desktops/DesktopDescription.h"

#include <QTemporaryDir>

#include <memory>

/// A described desktop that runs without a screen, with a home of its own.
class TestedDesktop {
public:
    /// Returns when it is at rest.
    static std::unique_ptr<TestedDesktop> create(const DesktopDescription& description);

    /// Ends everything that has been started, what its programs have started included.
    virtual ~TestedDesktop();
    TestedDesktop(const TestedDesktop&) = delete;
    TestedDesktop& operator=(const TestedDesktop&) = delete;

    const DesktopDescription& description() const { return m_description; }
    QString home() const { return m_home.path(); }

    /// Where the helper runs.
    virtual VirtualDesktop& desktop() = 0;
    /// The server that shows all of it: for pictures, and for a person's hands.
    virtual const X11Desktop& screen() const = 0;
    /// As VirtualDesktop's; a compositor that can have no other number while it runs is started
    /// anew.
    virtual void setMonitors(VirtualDesktop::Monitors monitors);

    virtual void startShell() = 0;
    /// At once, so that it cannot tidy up.
    virtual void killShell() = 0;
    /// True when the shell is there, and has been idle and the picture still for a second.
    bool waitUntilAtRest() const;

    /// Where windows and icons may be: the whole without the panel.
    QRect workArea() const;

    /// Shows a lime full-screen window of another program.
    void coverAll();
    void uncoverAll();

protected:
    explicit TestedDesktop(const DesktopDescription& description);

    /// What every program of this desktop is told beside the display.
    const QProcessEnvironment& additions() const { return m_additions; }
    /// For programs that the session bus starts.
    void announceEnvironment();

    void startProgram();
    void killProgram();

private:
    virtual bool isShellThere() const = 0;
    virtual qint64 shellProcess() const { return m_program.processId(); }

    const DesktopDescription& m_description;
    QTemporaryDir m_home;
    QProcessEnvironment m_additions;
    QProcess m_program;
    QProcess m_cover;
};
