#pragma once

#include <QRect>
#include <QString>

#include <vector>

/// One monitor as it was when it was asked for.
struct Screen {
    QString name; ///< the connector's or the monitor's name
    QRect frame;  ///< in the desktop's coordinates, y downward; device pixels on X11

    /// All monitors in the system's order, which is the order of the user's monitor numbers.
    static std::vector<Screen> screens();
};
