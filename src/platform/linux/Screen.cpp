#include "platform/Screen.h"

#include "platform/linux/x11/X11Monitors.h"

#include <QGuiApplication>
#include <QScreen>

namespace {

/// Qt scales a screen's size to its own pixels and keeps its origin.
QRect deviceFrame(const QScreen& screen)
{
    const auto geometry = screen.geometry();
    return {geometry.topLeft(), (QSizeF(geometry.size()) * screen.devicePixelRatio()).toSize()};
}

} // namespace

std::vector<Screen> Screen::screens()
{
    // The order is Qt's. The frames come from the display itself, because scaling back Qt's may
    // miss by a pixel.
    const auto frames = X11Monitors::frames();
    std::vector<Screen> screens;
    const auto known = QGuiApplication::screens();
    for (const auto* screen : known) {
        if (screen->geometry().isEmpty())
            continue; // Qt's stand-in while no monitor is connected
        screens.push_back({screen->name(), frames.value(screen->name(), deviceFrame(*screen))});
    }
    return screens;
}
