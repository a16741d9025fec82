#pragma once

#include <QRect>
#include <QString>

#include <vector>

/// One monitor as it was when it was asked for.
struct Screen {
    QString name; ///< the connector's or the monitor's name
    /// In the desktop's coordinates, y downward, in the desktop units of its display server: device
    /// pixels on X11, logical pixels on Wayland.
    QRect frame;

    bool operator==(const Screen&) const = default;

    /// All monitors in the system's order, which is the order of the user's monitor numbers.
    static std::vector<Screen> screens();
};
