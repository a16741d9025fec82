#include "platform/linux/display/Occlusion.h"

std::optional<bool> Occlusion::isEverythingCovered(const std::vector<StackedWindow>& stack)
{
    QRegion covered;
    bool hasOurs = false;
    for (const auto& window : stack) {
        if (window.kind == StackedWindow::Kind::Foreign) {
            covered += window.area;
            continue;
        }
        hasOurs = true;
        if (!window.area.subtracted(covered).isEmpty())
            return false;
    }
    return hasOurs ? std::optional(true) : std::nullopt;
}
