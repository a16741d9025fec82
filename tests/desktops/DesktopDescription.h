#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <vector>

/// A desktop as people have it, in words: what is started, and what it cannot do by itself.
///
/// Its *shell* is what a person would take for the desktop: the program that paints it and has the
/// icons, or the window manager or compositor where there is no such program.
struct DesktopDescription {
    enum class Base { X11, Sway, KWin, Mutter };
    struct File {
        QString path; ///< in the home
        QByteArray contents;
    };

    QString name;                ///< for the command line
    QString title;               ///< for people: the programs
    Base base = Base::X11;       ///< who owns the display
    QString windowManager = {};  ///< command; of the base X11 only
    QString desktopProgram = {}; ///< command; none where nobody paints the desktop
    QStringList packages;        ///< the programs' packages, whose versions are told
    int panelHeight = 0;         ///< what the desktop program puts at the bottom
    std::vector<File> files = {};
    /// Why something cannot be judged; null where it can.
    QString whyNoIcons = {};
    QString whyNoMenu = {};
    QString whyNoEarlyStart = {};
    QString whyNoRestart = {};
    QString whyNoPlugging = {};

    static const std::vector<DesktopDescription>& all();
};
