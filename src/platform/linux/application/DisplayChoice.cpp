#include "platform/linux/application/DisplayChoice.h"

#include "platform/linux/display/x11/X11Display.h"

#include <cstdio>

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
    return !xcb_connection_has_error(X11ConnectionHandle(xcb_connect(nullptr, nullptr)).get());
}

std::unique_ptr<DisplayServer> DisplayChoice::make()
{
    readRendererWish();
    return X11Display::open();
}
