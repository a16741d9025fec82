#pragma once

#include <QByteArray>
#include <QImage>

/// The helper's mark, a screen that plays, painted while the project is built. Each size is painted
/// for itself, so that its edges lie between pixels.
namespace HelperImage {

/// "fendix_statusBar" in one colour that stands out from any panel, by 3:1 at least.
QImage statusBarImage(int size);
constexpr int statusBarSizes[] = {16, 22, 24, 32, 48, 64}; ///< pixels, those that panels ask for

/// "fendix_statusBar-symbolic": the same as an SVG file that panels show in the colour of their
/// texts.
QByteArray symbolicImage();

/// "fendix_application", coloured, for windows.
QImage applicationImage(int size);
constexpr int applicationSizes[] = {16, 32, 48, 64, 128}; ///< pixels

} // namespace HelperImage
