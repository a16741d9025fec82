#pragma once

#include "desktop/X11Desktop.h"

#include <functional>

/// A Wayland compositor whose outputs are windows on an X server without a screen: there they have
/// a mouse, and what they show can be seen.
class NestedDesktop : public VirtualDesktop {
public:
    /// How to start it with so many monitors, of that width each.
    struct Compositor {
        QString program;
        QStringList arguments;
        QProcessEnvironment environment;
        int windows;    ///< on the X server: one for all monitors, or one a monitor
        QString unplug; ///< a command that takes the second monitor away, if there is one
        QString plug;   ///< and one that brings it back
    };
    using MakeCompositor = std::function<Compositor(int monitors, int width)>;
    /// What its programs have to be told of the display; empty while it cannot be known.
    using NameDisplay = std::function<QProcessEnvironment(const QByteArray& said)>;

    NestedDesktop(MakeCompositor makeCompositor, NameDisplay nameDisplay);
    ~NestedDesktop() override;

    /// Starts the compositor anew, but for unplugging and plugging the second one of two.
    void setMonitors(Monitors monitors) override;
    void click(const QPoint& point) override { m_screen.click(point); }
    void cover(const QColor& colour, Extent extent) override { m_screen.cover(colour, extent); }
    void uncover() override { m_screen.uncover(); }

    const X11Desktop& screen() const { return m_screen; }
    qint64 compositorProcess() const { return m_process.processId(); }

private:
    void start(int monitors);
    void arrangeWindows(std::size_t before);
    void run(const QString& command) const;
    void nameDisplay(QProcessEnvironment& environment) const override;
    std::optional<QColor> pixel(const QPoint& point) const override;
    QColor bareColour() const override { return {0x3f, 0x3f, 0x3f}; }

    X11Desktop m_screen; // without a window manager
    MakeCompositor m_makeCompositor;
    NameDisplay m_nameDisplay;
    Compositor m_compositor;
    QProcess m_process;
    QByteArray m_said; // on its standard error
    Monitors m_monitors = Monitors::One;
};
