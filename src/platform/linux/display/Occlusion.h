#pragma once

#include <QRegion>

#include <cstdint>
#include <set>
#include <vector>

/// One window as far as it matters to whether the desktop can be seen.
struct StackedWindow {
    enum class Kind { Ours, Foreign };
    Kind kind;
    QRegion area; ///< what it shows; of a foreign window, what it lets nothing shine through
    std::uint32_t name = 0; ///< the display's, of ours
};

namespace Occlusion {

/// Those of our windows of which a pixel can be seen. `stack` goes from the top to the bottom. Our
/// windows do not cover one another: the picture is ours all the same.
std::set<std::uint32_t> seenWindows(const std::vector<StackedWindow>& stack);

} // namespace Occlusion
