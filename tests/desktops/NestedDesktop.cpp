#include "desktops/NestedDesktop.h"

#include "support/ChildProcess.h"

#include <QTest>

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
    const int number = monitors == Monitors::TwoHalves ? 2 : 1;
    if (number != m_monitors)
        start(number);
}

void NestedDesktop::start(int monitors)
{
    if (m_process.state() != QProcess::NotRunning)
        stop(m_process);
    m_monitors = monitors;
    m_said.clear();
    const auto compositor = m_makeCompositor(monitors, size().width() / monitors);
    auto variables = m_screen.environment();
    variables.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, busAddress());
    variables.insert(compositor.environment);
    m_process.setProcessEnvironment(variables);
    ChildProcess::endWithThisProcess(m_process);
    const auto before = m_screen.topWindows();
    m_process.start(compositor.program, compositor.arguments);
    const bool isReady = QTest::qWaitFor(
        [&] {
            m_said += m_process.readAllStandardError();
            return !m_nameDisplay(m_said).isEmpty() && m_screen.topWindows().size() > before.size();
        },
        20'000);
    if (!isReady)
        qFatal("%s: %s", qUtf8Printable(compositor.program), m_said.constData());
}

void NestedDesktop::nameDisplay(QProcessEnvironment& environment) const
{
    environment.insert(m_nameDisplay(m_said));
}

std::optional<QColor> NestedDesktop::pixel(const QPoint& point) const
{
    return m_screen.picture({point, QSize(1, 1)}).pixelColor(0, 0);
}
