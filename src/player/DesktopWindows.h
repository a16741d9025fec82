#pragma once

#include "platform/DesktopWindow.h"
#include "platform/Player.h"
#include "platform/Screen.h"
#include "preferences/VideoPlayerOptions.h"

#include <functional>
#include <memory>
#include <vector>

/// The windows of the wallpaper, each with a view of the shared player, and the screens that they
/// were made for. Main thread only.
class DesktopWindows {
public:
    /// No windows yet. The player is asked for when there is a window to show it in, and has to
    /// outlive the windows.
    DesktopWindows(std::function<Player&()> player, std::function<void()> clickAction);
    ~DesktopWindows();
    DesktopWindows(const DesktopWindows&) = delete;
    DesktopWindows& operator=(const DesktopWindows&) = delete;

    /// Makes all windows anew: one for each screen or, with `lonely`, one for the screen of that
    /// index (the first screen where there is no such index).
    void make(VideoPlayerScreenType screenType, qint64 screenIndex);
    /// Whether the screens are still those that the windows were made for.
    bool fitScreens() const;

    bool isHideDesktopIcon() const { return m_isHideDesktopIcon; }
    /// Whether the video covers the desktop's icons, from the next time that levels are applied.
    void setHideDesktopIcon(bool isHidden) { m_isHideDesktopIcon = isHidden; }
    /// Puts the window at the level of the desktop's icons, behind or in front of them, and shows
    /// it.
    void applyLevel(DesktopWindow& window) const;
    void applyLevelToAll() const;
    void orderOut() const;

private:
    std::function<Player&()> m_player;
    std::function<void()> m_clickAction;
    std::vector<Screen> m_currentScreenList;
    std::vector<std::unique_ptr<DesktopWindow>> m_windowList; // the windows of the list above
    bool m_isHideDesktopIcon = false;
};
