#include "platform/linux/display/x11/X11ForeignHints.h"

#include <algorithm>

int X11ForeignHints::coordinate(std::uint32_t value)
{
    return static_cast<int>(std::min<std::uint32_t>(value, 0x7fff));
}

QRegion X11ForeignHints::opaqueRegion(const std::vector<std::uint32_t>& values)
{
    QRegion region;
    for (std::size_t i = 0; i + 3 < values.size() && i / 4 < mostParts; i += 4)
        region += QRect(coordinate(values[i]),
            coordinate(values[i + 1]),
            coordinate(values[i + 2]),
            coordinate(values[i + 3]));
    return region;
}
