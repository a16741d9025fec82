#pragma once

#include "platform/PlayerItem.h"
#include "platform/Screen.h"

#include <QStringList>

#include <utility>
#include <vector>

/// What the recording bodies were told and what they tell.
class Recording {
public:
    /// One line a call, oldest first: "window 1 back", "player play", "item red.mp4" and so on.
    /// Windows are numbered from 1 in the order in which they are made.
    static QStringList& lines() { return s_lines; }
    /// Takes the lines.
    static QStringList take() { return std::exchange(s_lines, {}); }

    /// The screens that there are.
    static std::vector<Screen>& screens() { return s_screens; }

    /// The item that the player has now; null for none, and while there is no player.
    static PlayerItem* currentItem();
    /// As the player does when the item is loaded, or cannot be played.
    static void setCurrentItemStatus(PlayerItem::Status status);

    /// Forgets everything, for the next test.
    static void reset();

private:
    static inline QStringList s_lines;
    static inline std::vector<Screen> s_screens;
};
