#pragma once

#include <QHash>
#include <QRect>
#include <QString>

/// The display's monitors (RandR 1.5) by name, in device pixels.
namespace X11Monitors {

/// Empty where there is no X11 display or it does not know about monitors.
QHash<QString, QRect> frames();

} // namespace X11Monitors
