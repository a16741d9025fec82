#include "platform/Recording.h"

#include <utility>

QStringList& Recording::lines()
{
    static QStringList lines;
    return lines;
}

QStringList Recording::take()
{
    return std::exchange(lines(), {});
}

std::vector<Screen>& Recording::screens()
{
    static std::vector<Screen> screens;
    return screens;
}
