#pragma once

#include "platform/linux/video/RenderContext.h"

#include <QSize>

#include <cstddef>
#include <cstdint>

/// Pictures drawn by the CPU, 4 bytes a pixel: blue, green, red, unused.
namespace CpuDrawing {

constexpr std::size_t bytesPerPixel = 4;

/// Hardware decoders have to copy their pictures back.
constexpr auto hardwareDecoding = "auto-copy-safe";

/// Bytes from one row to the next; rows begin at multiples of 64, for the vector units.
std::size_t stride(int width);

RenderContext createContext(mpv_handle& core);

/// Draws the context's current picture, filling `size`, cropped. `pixels` is `size.height()` rows
/// of `stride` bytes.
void draw(mpv_render_context& context, const QSize& size, std::size_t stride, std::uint8_t* pixels);

} // namespace CpuDrawing
