#include "player/DesktopWindows.h"

#include "player/PlayerFrames.h"
#include "player/PlayerView.h"

#include <algorithm>
#include <utility>

namespace {

std::vector<Screen> chosenScreens(VideoPlayerScreenType screenType, qint64 screenIndex)
{
    auto screens = Screen::screens();
    if (screenType != VideoPlayerScreenType::lonely || screens.empty())
        return screens;
    const bool isInRange = screenIndex >= 0 && screenIndex < static_cast<qint64>(screens.size());
    return {screens[isInRange ? static_cast<std::size_t>(screenIndex) : 0]};
}

} // namespace

DesktopWindows::DesktopWindows(std::function<Player&()> player, std::function<void()> clickAction)
    : m_player(std::move(player)),
      m_clickAction(std::move(clickAction)),
      m_currentScreenList(Screen::screens())
{
}

DesktopWindows::~DesktopWindows() = default;

void DesktopWindows::make(VideoPlayerScreenType screenType, qint64 screenIndex)
{
    m_currentScreenList = chosenScreens(screenType, screenIndex);
    const auto frames = computePlayerFrames(screenType, m_currentScreenList);

    m_windowList.clear();
    for (std::size_t i = 0; i < m_currentScreenList.size(); ++i) {
        const auto& screen = m_currentScreenList[i];
        auto& window = *m_windowList.emplace_back(
            std::make_unique<DesktopWindow>(QRect(QPoint(), screen.frame.size()),
                WindowStyle::Miniaturizable,
                WindowBacking::Buffered,
                DesktopWindow::Defer::No,
                screen));
        window.setCollectionBehavior(
            WindowCollectionBehavior::CanJoinAllSpaces | WindowCollectionBehavior::Transient);
        window.setClickAction(m_clickAction);
        auto view = std::make_unique<PlayerView>(frames[i]);
        view->setPlayer(m_player());
        view->setVideoGravity(VideoGravity::ResizeAspectFill);
        view->setControlsStyle(PlayerControlsStyle::None);
        window.addSubview(std::move(view));
        applyLevel(window);
    }
}

bool DesktopWindows::fitScreens() const
{
    const auto screens = Screen::screens();
    // With one chosen monitor of several the counts always differ, and so nothing fits.
    if (m_currentScreenList.size() != screens.size())
        return false;
    return std::ranges::all_of(m_currentScreenList, [&](const Screen& screen) {
        return std::ranges::any_of(
            screens, [&](const Screen& other) { return other.frame == screen.frame; });
    });
}

void DesktopWindows::applyLevel(DesktopWindow& window) const
{
    window.setLevel(WindowLevel::DesktopIcon);
    if (m_isHideDesktopIcon)
        window.orderFront();
    else
        window.orderBack();
}

void DesktopWindows::applyLevelToAll() const
{
    for (const auto& window : m_windowList)
        applyLevel(*window);
}

void DesktopWindows::orderOut() const
{
    for (const auto& window : m_windowList)
        window->orderOut();
}
