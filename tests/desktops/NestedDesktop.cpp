#include "desktops/NestedDesktop.h"

#include "support/ChildProcess.h"

#include <QTest>

#include <utility>

using namespace Qt::StringLiterals;

NestedDesktop::NestedDesktop(MakeCompositor makeCompositor, NameDisplay nameDisplay)
    : VirtualDesktop(QSize(1280, 720)),
      m_makeCompositor(std::move(makeCompositor)),
      m_nameDisplay(std::move(nameDisplay))
{
}

NestedDesktop::~NestedDesktop()
{
    stop(m_process);
}

void NestedDesktop::setMonitors(Monitors monitors)
{
    const auto before = std::exchange(m_monitors, monitors);
    const QRect right(size().width() / 2, 0, size().width() / 2, size().height());
    if (before == Monitors::TwoHalves && monitors == Monitors::LeftHalf) {
        run(m_compositor.unplug);
        m_screen.paint(right, Qt::magenta); // what was there last stays otherwise
    } else if (before == Monitors::LeftHalf && monitors == Monitors::TwoHalves) {
        run(m_compositor.plug);
    } else if (before != monitors || m_process.state() == QProcess::NotRunning) {
        start(monitors == Monitors::TwoHalves ? 2 : 1);
    }
}

void NestedDesktop::start(int monitors)
{
    if (m_process.state() != QProcess::NotRunning)
        stop(m_process);
    m_said.clear();
    m_compositor = m_makeCompositor(monitors, size().width() / monitors);
    auto variables = m_screen.environment();
    variables.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, busAddress());
    variables.insert(m_compositor.environment);
    m_process.setProcessEnvironment(variables);
    ChildProcess::endWithThisProcess(m_process);
    const auto before = m_screen.topWindows().size();
    m_process.start(m_compositor.program, m_compositor.arguments);
    const auto windows = before + static_cast<std::size_t>(m_compositor.windows);
    const bool isReady = QTest::qWaitFor(
        [&] {
            m_said += m_process.readAllStandardError();
            return !m_nameDisplay(m_said).isEmpty() && m_screen.topWindows().size() >= windows;
        },
        20'000);
    if (!isReady)
        qFatal("%s: %s", qUtf8Printable(m_compositor.program), m_said.constData());
    arrangeWindows(before);
}

/// They come one over the other.
void NestedDesktop::arrangeWindows(std::size_t before)
{
    const auto windows = m_screen.topWindows();
    const auto width = size().width() / m_compositor.windows;
    for (int i = 0; i < m_compositor.windows; ++i)
        m_screen.moveWindow(windows[before + static_cast<std::size_t>(i)], {i * width, 0});
}

void NestedDesktop::run(const QString& command) const
{
    QProcess process;
    process.setProcessEnvironment(environment());
    process.startCommand(command);
    process.waitForFinished();
}

void NestedDesktop::nameDisplay(QProcessEnvironment& environment) const
{
    environment.insert(m_nameDisplay(m_said));
}

std::optional<QColor> NestedDesktop::pixel(const QPoint& point) const
{
    return m_screen.picture({point, QSize(1, 1)}).pixelColor(0, 0);
}
