#include "player/VideoPlayerManager.h"

#include "base/Observe.h"

#include <QScopedValueRollback>

#include <chrono>
#include <cstdio>
#include <utility>

using namespace Qt::StringLiterals;
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
      m_screenType(initialScreenType(preferences.monitorArrange())),
      m_screenIndex(preferences.screenIndex()),
      m_playModel(optionFromRawValue<VideoPlayerPlayModel>(preferences.playModel())
                      .value_or(VideoPlayerPlayModel::single)),
      m_windows([this]() -> Player& { return player(); },
          [this] { tapVideoPlayerViewActionWithGrSender(); }),
      m_playList(library, openings)
{
    m_libraryUpdates.setSingleShot(true);
    m_libraryUpdates.setInterval(250ms);
    connect(&m_libraryUpdates, &QTimer::timeout, this, [this] {
        if (std::exchange(m_isLibraryUpdateWaiting, false))
            updateVideoList();
    });
    connect(&m_playList, &PlayList::libraryRetryDue, this, &VideoPlayerManager::readLibraryAgain);
    connect(&m_playList, &PlayList::playableFileFound, this, &VideoPlayerManager::playAgain);

    m_notificationObservers.push_back(observe(
        workspace, &Workspace::activeSpaceDidChange, [this] { activeSpaceDidChangeWithNotif(); }));
    m_notificationObservers.push_back(
        distributedCenter.addObserver(u"UpdateVideoList"_s, [this] { updateVideoList(); }));
    observePreferences();
    m_notificationObservers.push_back(center.addObserver(
        PlayerItem::didPlayToEndTimeNotification(), [this](const QVariant& item) {
            const auto* const ended = item.value<QObject*>();
            if (ended && (!m_player || ended != m_player->currentItem()))
                return; // another player's
            m_playList.noteEnd();
            playerItemDidReachEnd();
        }));
}

VideoPlayerManager::~VideoPlayerManager() = default;

void VideoPlayerManager::makeWindows()
{
    m_haveScreensChangedWhileClosed = false;
    m_windows.make(m_screenType, m_screenIndex);
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

void VideoPlayerManager::rebuildWindows()
{
    m_windows.orderOut();
    createWindows();
}

void VideoPlayerManager::screenParametersDidChange()
{
    if (!m_preferences.isOpenPlayer())
        m_haveScreensChangedWhileClosed = true; // the windows are made anew when they are opened
    else if (!m_windows.fitScreens())
        rebuildWindows();
}

void VideoPlayerManager::setHideDesktopIcon(bool isHidden)
{
    m_windows.setHideDesktopIcon(isHidden);
    if (m_preferences.isOpenPlayer())
        applyWindowLevelToAll();
}

void VideoPlayerManager::activeSpaceDidChangeWithNotif()
{
    setHideDesktopIcon(m_windows.isHideDesktopIcon());
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

Player& VideoPlayerManager::player()
{
    if (!m_player)
        makePlayer();
    return *m_player;
}

void VideoPlayerManager::makePlayer()
{
    reloadVideoList();
    m_playList.recallUnfinishedOpening();
    m_player = std::make_unique<Player>(m_playList.openPlayable());
    m_player->setActionAtItemEnd(Player::ActionAtItemEnd::None);
    m_player->setVolume(m_preferences.volume());
    m_player->setMuted(m_preferences.mute());
    observeItem();
}

bool VideoPlayerManager::isMuted()
{
    return player().isMuted();
}

void VideoPlayerManager::setIsMuted(bool isMuted)
{
    player().setMuted(isMuted);
}

float VideoPlayerManager::volume()
{
    return player().volume();
}

void VideoPlayerManager::setVolume(float volume)
{
    player().setVolume(volume);
}

void VideoPlayerManager::openPlayable()
{
    auto item = m_playList.openPlayable();
    m_statusObservation.reset();
    player().replaceCurrentItem(std::move(item));
    observeItem();
}

void VideoPlayerManager::observeItem()
{
    if (const auto* item = m_player->currentItem()) {
        m_statusObservation = observe(*item, &PlayerItem::statusChanged, [this, item] {
            observeValueForKeyPath(u"status"_s, *item);
        });
    }
    watchForPlayableFiles();
}

void VideoPlayerManager::observeValueForKeyPath(const QString& keyPath, const PlayerItem& object)
{
    if (keyPath != u"status")
        return;
    if (object.status() == PlayerItem::Status::ReadyToPlay)
        m_playList.noteReady();
    if (object.status() != PlayerItem::Status::Failed)
        return;
    m_playList.noteFailure(object);
    playerItemDidReachEnd(); // skipped like one that has ended
    watchForPlayableFiles();
}

bool VideoPlayerManager::hasNothingToPlay()
{
    const auto* item = player().currentItem();
    return !item || item->status() == PlayerItem::Status::Failed;
}

/// Tries the current video, or the next one that there is, without opening a closed wallpaper or
/// going on with a paused one.
void VideoPlayerManager::playAgain()
{
    if (!m_preferences.isOpenPlayer())
        return;
    m_playList.forgetFailures();
    m_playList.readSuspects();
    openPlayable();
    savePlayingSign();
}

void VideoPlayerManager::watchForPlayableFiles()
{
    if (!hasNothingToPlay())
        m_playList.stopWatching();
    else if (player().currentItem()) // the one video that is repeated
        m_playList.watchFiles(PlayList::Watched::Current);
    else
        m_playList.watchFiles(PlayList::Watched::Any);
    Q_EMIT currentVideoChanged();
}

QString VideoPlayerManager::whyNothingPlays() const
{
    const auto* const item = m_player ? m_player->currentItem() : nullptr;
    if (!m_player || (item && item->status() != PlayerItem::Status::Failed))
        return {};
    if (m_playList.isUnread())
        return u"The library cannot be read."_s;
    if (m_playList.isEmpty())
        return u"The library is empty."_s;
    return item ? u"The video cannot be played."_s
                : u"No video of the library can be played: files are missing or broken."_s;
}

void VideoPlayerManager::openPlayer()
{
    if (std::exchange(m_haveScreensChangedWhileClosed, false) && !m_windows.fitScreens()) {
        m_windows.orderOut();
        makeWindows();
    }
    applyWindowLevelToAll();
    m_playList.forgetFailures();
    auto& sharedPlayer = player();
    openPlayable();
    applyWindowLevelToAll();
    sharedPlayer.play();
    savePlayingSign();
}

void VideoPlayerManager::closePlayer()
{
    player().pause();
    m_playList.stopWatching();
    m_windows.orderOut();
}

void VideoPlayerManager::setPlaying(bool isPlaying)
{
    if (!isPlaying) {
        player().pause();
        return;
    }
    applyWindowLevelToAll();
    player().play();
    if (hasNothingToPlay())
        playAgain();
    savePlayingSign();
}

void VideoPlayerManager::playerItemDidReachEnd()
{
    playNext();
}

void VideoPlayerManager::playNext()
{
    const auto restart = [this] {
        if (auto* const item = player().currentItem())
            item->seekToZero();
    };
    if (!m_playList.currentSign()) {
        restart();
        savePlayingSign();
    }
    if (m_playModel == VideoPlayerPlayModel::single) {
        restart();
        return;
    }
    if (!m_playList.advance()) {
        if (m_playModel == VideoPlayerPlayModel::random)
            reloadVideoList();
        m_playList.moveToHead();
    }
    openPlayable(); // the player keeps playing, or pausing
    savePlayingSign();
}

void VideoPlayerManager::reloadVideoList()
{
    m_playList.reload(m_playModel, m_preferences.playingVideoSign());
}

/// However fast the companion posts: the first of a burst at once, the others together.
void VideoPlayerManager::updateVideoList()
{
    if (m_libraryUpdates.isActive()) {
        m_isLibraryUpdateWaiting = true;
        return;
    }
    reloadVideoList();
    m_libraryUpdates.start();
    if (m_player && hasNothingToPlay())
        playAgain();
}

/// While another process writes, or before a damaged file is replaced, the library cannot be read.
/// That passes, and nobody tells.
void VideoPlayerManager::readLibraryAgain()
{
    const bool wasChoiceUnread = m_playList.takeUnreadChoice();
    const bool isOpen = m_preferences.isOpenPlayer();
    if (wasChoiceUnread && isOpen)
        playingSignDidChange(m_preferences.playingVideoSign().value_or(QString()));
    // Closed meanwhile, the choice is the first to play when the wallpaper opens.
    if (m_playList.isUnread() || (wasChoiceUnread && !isOpen)) {
        reloadVideoList();
        if (!m_playList.isUnread() && hasNothingToPlay())
            playAgain();
    }
    if (!m_preferences.isPlaying())
        player().pause();
}

void VideoPlayerManager::savePlayingSign()
{
    const auto sign = m_playList.currentSign();
    if (!sign || m_playList.isChoiceUnread())
        return;
    const QScopedValueRollback isSaving(m_isSavingSign, true);
    if (m_preferences.playingVideoSign() != sign)
        m_preferences.advancePlayingVideoSign(*sign);
}

void VideoPlayerManager::playingSignDidChange(const QString& sign)
{
    if (m_playList.currentSign() == sign) {
        if (!m_isSavingSign && hasNothingToPlay()) {
            m_playList.forgive(sign);
            playAgain();
        }
        return;
    }
    if (!m_playList.admitChoice(sign))
        return;
    player().pause();
    reloadVideoList();
    openPlayer();
}

void VideoPlayerManager::observePreferences()
{
    const auto follow = [this](auto signal, auto handler) {
        m_observerDisposables.push_back(observe(m_preferences, signal, handler));
    };
    follow(&Preferences::playingVideoSignChanged, [this](const std::optional<QString>& sign) {
        if (!sign)
            qFatal("The playing video's sign was taken away.");
        playingSignDidChange(*sign);
    });
    follow(&Preferences::isPlayingChanged, [this](bool isPlaying) { setPlaying(isPlaying); });
    follow(&Preferences::playModelChanged, [this](qint64 value) {
        m_playModel =
            optionFromRawValue<VideoPlayerPlayModel>(value).value_or(VideoPlayerPlayModel::single);
        reloadVideoList();
        if (m_player && m_preferences.isOpenPlayer() && hasNothingToPlay())
            playNext(); // a list goes on where repeating has come to nothing
    });
    follow(&Preferences::isOpenPlayerChanged, [this](bool isOpen) {
        if (isOpen)
            openPlayer();
        else
            closePlayer();
    });
    follow(&Preferences::screenIndexChanged, [this](qint64 index) {
        m_screenType = VideoPlayerScreenType::lonely;
        m_screenIndex = index;
        rebuildWindows();
    });
    follow(&Preferences::monitorArrangeChanged, [this](qint64 value) {
        m_screenType = optionFromRawValue<VideoPlayerScreenType>(value).value_or(
            VideoPlayerScreenType::lonely);
        rebuildWindows();
    });
    // The companion's volume and mute reach a player that is there; a later one asks for them.
    follow(&Preferences::volumeChanged, [this](float value) {
        if (m_player)
            m_player->setVolume(value);
    });
    follow(&Preferences::muteChanged, [this](bool value) {
        if (m_player)
            m_player->setMuted(value);
    });
}
