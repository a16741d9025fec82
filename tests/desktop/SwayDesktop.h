#pragma once

#include "desktop/X11Desktop.h"

#include <QImage>
#include <QTemporaryDir>

/// The compositor sway: it has layer shell, and no XWayland here. Its outputs are windows on an X
/// server without a screen, because those can be unplugged; sway 1.7's headless ones stay for ever,
/// and have no mouse.
class SwayDesktop : public VirtualDesktop {
public:
    SwayDesktop();
    ~SwayDesktop() override;

    void setMonitors(Monitors monitors) override;
    void click(const QPoint& point) override;
    void cover(const QColor& colour, Extent extent) override;
    void uncover() override;

    /// Ends it at once, so that it cannot tidy up.
    void kill();
    /// Starts it again, under the same name and with the same monitors. Returns when it answers.
    void start();

    /// Adds the next output, of settings as in sway-output(5): "mode --custom 800x600 scale 2". The
    /// first one is there from the beginning.
    void plug(const QString& settings);
    /// Takes the latest one away.
    void unplug();
    /// Of the output of that number, from 0 on.
    void configure(std::size_t output, const QString& settings);
    /// Where the outputs are windows, the first at the left top.
    const X11Desktop& screen() const { return m_screen; }
    /// What an output shows, in its own pixels.
    QImage picture(std::size_t output) const;

private:
    /// As in sway(5).
    void command(const QString& command) const;
    void nameDisplay(QProcessEnvironment& environment) const override;
    std::optional<QColor> pixel(const QPoint& point) const override;
    QColor bareColour() const override;

    QString path(const QString& name) const { return m_folder.filePath(name); }
    /// The answer is empty where sway does not run.
    QByteArray swaymsg(const QStringList& arguments) const;
    QStringList outputNames() const;
    /// Takes a picture with the program grim.
    QImage grim(const QStringList& area) const;

    struct Output {
        QString name;
        QString settings;
    };

    X11Desktop m_screen;    // without a window manager
    QTemporaryDir m_folder; // its runtime folder, too
    std::vector<Output> m_outputs;
    QProcess m_sway;
    QProcess m_cover;
};
