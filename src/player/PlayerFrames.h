#pragma once

#include "platform/Screen.h"
#include "preferences/VideoPlayerOptions.h"

#include <QRect>

#include <vector>

/// Where the player view lies in each screen's window, one rectangle a screen in the same order,
/// relative to the window's content view.
///
/// `combo` gives every view the size of one large picture and moves it so that the window shows
/// the part that falls on its screen. The picture spans all screens and, always, the origin of the
/// desktop. The other types give every view the size of its screen.
std::vector<QRect> computePlayerFrames(
    VideoPlayerScreenType screenType, const std::vector<Screen>& screens);
