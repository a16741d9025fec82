#pragma once

#include "platform/linux/display/x11/X11Connection.h"

#include <QRect>

#include <optional>
#include <vector>

/// Reads what windows and pixmaps hold.
namespace X11PixelReader {

/// Row by row without gaps, a word a pixel, of which the lower 24 bits are its colour. None where
/// the drawable is gone, does not reach that far, or has fewer colours. Waits for the server.
std::optional<std::vector<std::uint32_t>> read(
    X11Connection& x11, xcb_drawable_t drawable, const QRect& area);

} // namespace X11PixelReader
