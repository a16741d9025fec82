#pragma once

#include <QRegion>

#include <cstddef>
#include <cstdint>
#include <vector>

/// What other programs write about their windows, which may be anything.
namespace X11ForeignHints {

/// More windows than people have; a limit to what other programs can make us do.
constexpr std::size_t mostWindows = 512;
/// The same for the parts of one.
constexpr std::size_t mostParts = 64;

/// A number as a coordinate, of which the server has 16 bits.
int coordinate(std::uint32_t value);

/// The value of `_NET_WM_OPAQUE_REGION`, in the window.
QRegion opaqueRegion(const std::vector<std::uint32_t>& values);

} // namespace X11ForeignHints
