#include "player/PlayerFrames.h"

#include <algorithm>

namespace {

std::vector<QRect> spanningFrames(const std::vector<Screen>& screens)
{
    int minX = 0;
    int minY = 0;
    int maxX = 0;
    int maxY = 0;
    for (const auto& screen : screens) {
        minX = std::min(minX, screen.frame.x());
        minY = std::min(minY, screen.frame.y());
        maxX = std::max(maxX, screen.frame.x() + screen.frame.width());
        maxY = std::max(maxY, screen.frame.y() + screen.frame.height());
    }
    std::vector<QRect> frames;
    frames.reserve(screens.size());
    for (const auto& screen : screens)
        frames.emplace_back(
            minX - screen.frame.x(), minY - screen.frame.y(), maxX - minX, maxY - minY);
    return frames;
}

} // namespace

std::vector<QRect> computePlayerFrames(
    VideoPlayerScreenType screenType, const std::vector<Screen>& screens)
{
    if (screenType == VideoPlayerScreenType::combo)
        return spanningFrames(screens);
    std::vector<QRect> frames;
    frames.reserve(screens.size());
    for (const auto& screen : screens)
        frames.emplace_back(QPoint(), screen.frame.size());
    return frames;
}
