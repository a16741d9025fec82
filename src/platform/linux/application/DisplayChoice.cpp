#include "platform/linux/application/DisplayChoice.h"

#include "platform/linux/display/UnusableDisplay.h"
#include "platform/linux/display/wayland/WaylandDisplay.h"
#include "platform/linux/display/x11/X11Display.h"

#include <cstdio>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

void readRendererWish()
{
    const auto wish = qgetenv("TAVELOR_RENDERER");
    if (wish == "gpu")
        std::fputs("TAVELOR_RENDERER: this build draws with the CPU only\n", stderr);
    else if (!wish.isEmpty() && wish != "cpu")
        std::fputs("TAVELOR_RENDERER: neither \"gpu\" nor \"cpu\", ignored\n", stderr);
}

} // namespace

bool DisplayChoice::isAnyThere()
{
    if (WaylandConnection::isThere())
        return true;
    const X11ConnectionHandle x11(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(x11.get()))
        return false;
    // Qt would wait for ever for a compositor that accepts a connection and does not answer.
    qunsetenv("WAYLAND_DISPLAY");
    return true;
}

std::unique_ptr<DisplayServer> DisplayChoice::make()
{
    readRendererWish();
    auto wayland = WaylandConnection::open();
    if (wayland.connection)
        return std::make_unique<WaylandDisplay>(std::move(wayland.connection));
    if (auto x11 = X11Display::open())
        return x11;
    if (wayland.outcome == WaylandConnection::Outcome::NoLayerShell)
        return std::make_unique<UnusableDisplay>(
            u"This Wayland compositor has no layer shell and there is no X server, so the "
            "wallpaper cannot be shown."_s);
    return nullptr;
}
