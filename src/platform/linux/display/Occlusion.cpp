#include "platform/linux/display/Occlusion.h"

std::set<std::uint32_t> Occlusion::seenWindows(const std::vector<StackedWindow>& stack)
{
    QRegion covered;
    std::set<std::uint32_t> seen;
    for (const auto& window : stack) {
        if (window.kind == StackedWindow::Kind::Foreign)
            covered += window.area;
        else if (!window.area.subtracted(covered).isEmpty())
            seen.insert(window.name);
    }
    return seen;
}
