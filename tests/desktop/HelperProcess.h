#pragma once

#include "desktop/VirtualDesktop.h"
#include "support/TemporaryHome.h"

#include <QProcess>

/// The real helper on a virtual desktop, with a home of its own.
class HelperProcess {
public:
    explicit HelperProcess(VirtualDesktop& desktop);
    /// Ends it as a session does; the test fails if it does not go, or if it complained.
    ~HelperProcess();
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    TemporaryHome& home() { return m_home; }

    /// A plain video in the home, as a row of the library under the sign.
    void addVideo(const QString& sign, const QString& colour, double seconds = 2);
    /// Any file in the home, by its name, as a row.
    void addRow(const QString& sign, const QString& file);
    QString videoFile(const QString& sign) const;

    /// For the next start. Without a service of the test's own there is none.
    void setEnvironment(const QString& name, const QString& value);
    void start();
    /// True if it is gone by itself or by now.
    bool waitForEnd(int milliseconds = 5000);
    QProcess& process() { return m_process; }
    const QProcess& process() const { return m_process; }
    /// What it and its threads have used so far.
    double processorSeconds() const;
    /// Whether it uses less than a hundredth of a core for three seconds on end, soon.
    bool comesToRest() const;
    /// One of the things that it tells about itself on the session bus; none where it does not.
    QVariant status(const QString& property) const;
    /// All lines that it has written to standard output so far.
    QStringList lines();
    /// Says "UpdateVideoList" on the bus, as the importing companion does.
    void announceLibrary() const;

private:
    VirtualDesktop& m_desktop;
    TemporaryHome m_home;
    QProcess m_process;
    QByteArray m_output;
    QProcessEnvironment m_environment;
};
