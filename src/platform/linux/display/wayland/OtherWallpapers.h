#pragma once

#include <QString>

/// Programs that fill the layer "background" with a picture of their own. Which of two surfaces in
/// one layer lies in front is the compositor's matter, and no protocol tells.
namespace OtherWallpapers {

/// The name of one that this user runs; empty where there is none that is known.
QString running();

/// Whether this user runs Plasma's desktop.
bool isPlasmaRunning();

} // namespace OtherWallpapers
