#pragma once

#include "platform/linux/display/DisplayServer.h"

#include <memory>

/// Which display server the wallpaper is shown on: a Wayland compositor with layer shell, else the
/// X server that DISPLAY names, else a display that cannot show it. Nothing else asks.
namespace DisplayChoice {

/// Whether any display answers. To be asked before the application object is made, because Qt
/// aborts where there is none.
bool isAnyThere();

/// Needs an application object. Null where no display answers.
std::unique_ptr<DisplayServer> make();

} // namespace DisplayChoice
