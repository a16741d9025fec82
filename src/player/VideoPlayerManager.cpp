#include "player/VideoPlayerManager.h"

#include "base/Observe.h"
#include "player/PlayerFrames.h"
#include "player/PlayerView.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// What the suite says at the start. A value out of range means something else here than when it
/// comes later, and both are wanted.
VideoPlayerScreenType initialScreenType(qint64 monitorArrange)
{
    switch (monitorArrange) {
    case 0:
        return VideoPlayerScreenType::combo;
    case 2:
        return VideoPlayerScreenType::lonely;
    default:
        return VideoPlayerScreenType::dynamic;
    }
}

} // namespace

VideoPlayerManager& VideoPlayerManager::shared()
{
    static VideoPlayerManager manager(Preferences::shared(),
        LocalVideoDBManager::shared(),
        OpeningRecord::shared(),
        Workspace::shared(),
        DistributedNotificationCenter::defaultCenter(),
        NotificationCenter::defaultCenter());
    return manager;
}

VideoPlayerManager::VideoPlayerManager(Preferences& preferences,
    LocalVideoDBManager& library,
    OpeningRecord& openings,
    Workspace& workspace,
    DistributedNotificationCenter& distributedCenter,
    NotificationCenter& center)
    : m_preferences(preferences),
      m_library(library),
      m_openings(openings),
      m_screenType(initialScreenType(preferences.monitorArrange())),
      m_screenIndex(preferences.screenIndex()),
      m_playModel(optionFromRawValue<VideoPlayerPlayModel>(preferences.playModel())
                      .value_or(VideoPlayerPlayModel::single)),
      m_currentScreenList(Screen::screens())
{
    const auto setUp = [this](QTimer& timer, std::chrono::milliseconds interval, auto handler) {
        timer.setSingleShot(true);
        timer.setInterval(interval);
        connect(&timer, &QTimer::timeout, this, handler);
    };
    setUp(m_libraryRetry, 1s, [this] { readLibraryAgain(); });
    setUp(m_libraryUpdates, 250ms, [this] {
        if (std::exchange(m_isLibraryUpdateWaiting, false))
            updateVideoList();
    });
    setUp(m_openingTime, 5s, [this] { m_openings.finish(OpeningRecord::Outcome::Plays); });
    connect(&m_fileWatch, &PlayableFileWatch::found, this, [this](const QString& sign) {
        m_videoList.moveToSign(sign);
        playAgain();
    });

    m_notificationObservers.push_back(observe(
        workspace, &Workspace::activeSpaceDidChange, [this] { activeSpaceDidChangeWithNotif(); }));
    m_notificationObservers.push_back(distributedCenter.addObserver(
        QStringLiteral("UpdateVideoList"), [this] { updateVideoList(); }));
    observePreferences();
    m_notificationObservers.push_back(
        center.addObserver(PlayerItem::didPlayToEndTimeNotification(), [this] {
            m_failedFiles.clear();
            m_fileWatch.forgetFailures();
            m_openings.finish(OpeningRecord::Outcome::Plays);
            playerItemDidReachEnd();
        }));
}

VideoPlayerManager::~VideoPlayerManager() = default;

std::vector<Screen> VideoPlayerManager::chosenScreens() const
{
    auto screens = Screen::screens();
    if (m_screenType != VideoPlayerScreenType::lonely || screens.empty())
        return screens;
    const bool isInRange =
        m_screenIndex >= 0 && m_screenIndex < static_cast<qint64>(screens.size());
    return {screens[isInRange ? static_cast<std::size_t>(m_screenIndex) : 0]};
}

void VideoPlayerManager::makeWindows()
{
    m_haveScreensChangedWhileClosed = false;
    m_currentScreenList = chosenScreens();
    const auto frames = computePlayerFrames(m_screenType, m_currentScreenList);

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
        window.setClickAction([this] { tapVideoPlayerViewActionWithGrSender(); });
        auto view = std::make_unique<PlayerView>(frames[i]);
        view->setPlayer(player());
        view->setVideoGravity(VideoGravity::ResizeAspectFill);
        view->setControlsStyle(PlayerControlsStyle::None);
        window.addSubview(std::move(view));
        applyWindowLevel(window);
    }
}

void VideoPlayerManager::createWindows()
{
    makeWindows();
    if (!m_preferences.isOpenPlayer()) {
        closePlayer();
        return;
    }
    applyWindowLevelToAll();
    player().play();
    savePlayingSign();
    if (!m_preferences.isPlaying())
        m_preferences.setIsPlaying(true);
}

void VideoPlayerManager::orderOutWindows() const
{
    for (const auto& window : m_windowList)
        window->orderOut();
}

void VideoPlayerManager::rebuildWindows()
{
    orderOutWindows();
    createWindows();
}

bool VideoPlayerManager::areWindowsMadeForTheScreens() const
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

void VideoPlayerManager::screenParametersDidChange()
{
    if (!m_preferences.isOpenPlayer())
        m_haveScreensChangedWhileClosed = true; // the windows are made anew when they are opened
    else if (!areWindowsMadeForTheScreens())
        rebuildWindows();
}

void VideoPlayerManager::setHideDesktopIcon(bool isHidden)
{
    m_isHideDesktopIcon = isHidden;
    if (m_preferences.isOpenPlayer())
        applyWindowLevelToAll();
}

void VideoPlayerManager::activeSpaceDidChangeWithNotif()
{
    setHideDesktopIcon(m_isHideDesktopIcon);
}

void VideoPlayerManager::applyWindowLevel(DesktopWindow& window) const
{
    window.setLevel(WindowLevel::DesktopIcon);
    if (m_isHideDesktopIcon)
        window.orderFront();
    else
        window.orderBack();
}

void VideoPlayerManager::applyWindowLevelToAll() const
{
    for (const auto& window : m_windowList)
        applyWindowLevel(*window);
}

QVariant VideoPlayerManager::valueForKey(const QString& key) const
{
    if (key == u"screenType")
        return static_cast<qint64>(m_screenType);
    if (key == u"screenIndex")
        return m_screenIndex;
    return property(key.toUtf8().constData());
}

void VideoPlayerManager::tapVideoPlayerViewActionWithGrSender() const
{
    std::puts("tapVideoPlayerViewAction");
    std::fflush(stdout);
}
