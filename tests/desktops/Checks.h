#pragma once

#include "desktops/Cell.h"
#include "desktops/TestedDesktop.h"

#include <functional>
#include <vector>

/// What a check works on.
struct Stage {
    TestedDesktop& desktop;
    /// What the bare desktop does, which is what the helper must not spoil.
    struct {
        QRect icon;     ///< of a file in ~/Desktop; null where there are no icons
        int iconPixels; ///< that belong to it
        QRect menu;     ///< of a secondary click at freeSpot; null where there is none
    } bare;
};

/// A row of the table.
struct Check {
    QString question; ///< in the table, as a statement
    std::function<Cell(const Stage&)> ask;
};

/// Puts a file on the desktop, opens the menu, and writes down where they are. Ends the process if
/// the desktop does not do by itself what its description says.
Stage prepare(TestedDesktop& desktop);

/// In the order in which they are to be asked: the later ones leave more behind.
const std::vector<Check>& allChecks();
