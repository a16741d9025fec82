#pragma once

#include <QRegion>

#include <optional>
#include <vector>

/// One window as far as it matters to whether the desktop can be seen.
struct StackedWindow {
    enum class Kind { Ours, Foreign };
    Kind kind;
    QRegion area; ///< what it shows; of a foreign window, what it lets nothing shine through
};

namespace Occlusion {

/// Whether no pixel of our windows can be seen; none where we have no window. From the top of the
/// stack to its bottom. Our windows do not cover one another: the picture is ours all the same.
std::optional<bool> isEverythingCovered(const std::vector<StackedWindow>& stack);

} // namespace Occlusion
