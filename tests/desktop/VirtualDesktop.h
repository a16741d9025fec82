#pragma once

#include <QColor>
#include <QPoint>
#include <QProcess>
#include <QSize>
#include <QString>

#include <memory>
#include <optional>

/// A desktop without a screen, with a session bus of its own. What it shows is read from its
/// pictures, as a person would see it.
///
/// Points and rectangles are in the units of the display server: pixels on X11, logical ones on
/// Wayland, where an output of scale 2 shows each of them with four pixels.
class VirtualDesktop {
public:
    /// The kind that TAVELOR_TEST_DESKTOP names: "sway", or else X11 with a window manager. Windows
    /// can be shown on it at once.
    static std::unique_ptr<VirtualDesktop> create();

    virtual ~VirtualDesktop();
    VirtualDesktop(const VirtualDesktop&) = delete;
    VirtualDesktop& operator=(const VirtualDesktop&) = delete;

    /// For processes that shall run on this desktop.
    QProcessEnvironment environment() const;
    QString busAddress() const { return m_busAddress; }
    void stopBus();

    /// The whole desktop as one monitor; a left one only, or a left and a right one.
    enum class Monitors { One, LeftHalf, TwoHalves };
    virtual void setMonitors(Monitors monitors) = 0;

    /// "red" for anything near pure red, and so on; "bare" where there is no window or no monitor;
    /// "#rrggbb" for what is no such colour.
    QString colour(const QPoint& point) const;
    QString leftColour() const { return colour({200, 200}); }
    QString rightColour() const { return colour({m_size.width() - 200, 200}); }

    /// With the primary button.
    virtual void click(const QPoint& point) = 0;

    /// Shows another program's window, of one colour, over the place of leftColour(), or windows
    /// over everything.
    enum class Extent { Left, All };
    virtual void cover(const QColor& colour, Extent extent = Extent::Left) = 0;
    virtual void uncover() = 0;

protected:
    explicit VirtualDesktop(const QSize& size);

    QSize size() const { return m_size; }

    /// Starts it with the signal that it gets when this process has ended in any way, and returns
    /// the first line that it prints, when it is ready.
    static QString start(QProcess& process, const QString& program, const QStringList& arguments);
    static void stop(QProcess& process);

private:
    /// What names the display, into an environment that names none.
    virtual void nameDisplay(QProcessEnvironment& environment) const = 0;
    /// None where there is no monitor.
    virtual std::optional<QColor> pixel(const QPoint& point) const = 0;
    /// Of a desktop without windows; no colour that a window has.
    virtual QColor bareColour() const = 0;

    QSize m_size;
    QProcess m_bus;
    QString m_busAddress;
};
