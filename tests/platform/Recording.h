#pragma once

#include "platform/Screen.h"

#include <QStringList>

#include <vector>

class PlayerItem;

/// What the recording bodies were told and what they tell.
namespace Recording {

/// One line a call, oldest first: "window 1 back", "player play", "item red.mp4" and so on.
/// Windows are numbered from 1 in the order in which they are made.
QStringList& lines();
/// Takes the lines.
QStringList take();

/// The screens that there are.
std::vector<Screen>& screens();

/// The item that the player has now; null for none, and while there is no player.
PlayerItem* currentItem();
/// What happens to a video that cannot be played.
void failCurrentItem();
/// A click on the last window made.
void click();

/// Forgets everything, for the next test.
void reset();

} // namespace Recording
