#include "player/VideoPlayerManager.h"

#include "base/Observe.h"
#include "library/VideoUrl.h"

#include <QUrl>

#include <utility>

Player& VideoPlayerManager::player()
{
    if (!m_player)
        makePlayer();
    return *m_player;
}

void VideoPlayerManager::makePlayer()
{
    reloadVideoList();
    const auto url = playableUrl();
    m_player = std::make_unique<Player>(url ? std::make_unique<PlayerItem>(*url) : nullptr);
    m_player->setActionAtItemEnd(Player::ActionAtItemEnd::None);
    m_player->setVolume(m_preferences.volume());
    m_player->setMuted(m_preferences.mute());
    observeStatus();
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

/// Moves the cursor to the first video, from the current one on, whose file is there. None after
/// one full pass without success.
std::optional<QUrl> VideoPlayerManager::playableUrl()
{
    for (std::size_t tried = 0; tried < m_videoList.count(); ++tried) {
        auto url = videoUrl(m_videoList.current()->val.url);
        if (url && videoFileExists(*url))
            return url;
        m_videoList.advance();
    }
    return std::nullopt;
}

void VideoPlayerManager::replaceItem(const std::optional<QUrl>& url)
{
    m_statusObservation.reset();
    player().replaceCurrentItem(url ? std::make_unique<PlayerItem>(*url) : nullptr);
    observeStatus();
}

void VideoPlayerManager::observeStatus()
{
    if (const auto* item = m_player->currentItem()) {
        m_statusObservation = observe(*item, &PlayerItem::statusChanged, [this, item] {
            observeValueForKeyPath(QStringLiteral("status"), *item);
        });
    }
}

void VideoPlayerManager::observeValueForKeyPath(const QString& keyPath, const PlayerItem& object)
{
    if (keyPath != u"status" || object.status() != PlayerItem::Status::Failed)
        return;
    // A failed video is skipped like one that has ended, but when all of them have failed, going
    // round and round would only keep the machine busy.
    if (++m_failuresInARow >= m_videoList.count() && m_playModel != VideoPlayerPlayModel::single)
        replaceItem(std::nullopt);
    else
        playerItemDidReachEnd();
}

void VideoPlayerManager::openPlayer()
{
    applyWindowLevelToAll();
    m_failuresInARow = 0;
    auto& sharedPlayer = player();
    replaceItem(playableUrl());
    applyWindowLevelToAll();
    sharedPlayer.play();
    savePlayingSign();
}

void VideoPlayerManager::closePlayer()
{
    player().pause();
    for (const auto& window : m_windowList)
        window->orderOut();
}

void VideoPlayerManager::setPlaying(bool isPlaying)
{
    if (!isPlaying) {
        player().pause();
        return;
    }
    applyWindowLevelToAll();
    player().play();
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
    if (!m_videoList.current()) {
        restart();
        savePlayingSign();
    }
    if (m_playModel == VideoPlayerPlayModel::single) {
        restart();
        return;
    }
    if (m_videoList.current() && m_videoList.current()->next) {
        m_videoList.advance();
    } else {
        if (m_playModel == VideoPlayerPlayModel::random)
            reloadVideoList();
        m_videoList.moveToHead();
    }
    replaceItem(playableUrl()); // the player keeps playing, or pausing
    savePlayingSign();
}

void VideoPlayerManager::reloadVideoList()
{
    const std::lock_guard lock(m_videoListLocker);
    m_videoList.clear();
    auto rows = m_library.allVideos();
    m_isListUnread = m_library.lastReading() == LocalVideoDBManager::Reading::Busy;
    if (m_isListUnread)
        m_libraryRetry.start();
    if (m_playModel == VideoPlayerPlayModel::random)
        rows = randomlyReordered(rows);
    for (auto& row : rows)
        m_videoList.append(std::move(row));
    m_videoList.moveToSign(m_preferences.playingVideoSign());
}

/// While another process writes, the library reads as empty. That passes, and nobody tells.
void VideoPlayerManager::retryWhileLibraryIsBusy()
{
    if (std::exchange(m_isChoiceUnread, false))
        playingSignDidChange(m_preferences.playingVideoSign().value_or(QString()));
    if (m_isListUnread) {
        reloadVideoList();
        if (m_videoList.current() && !player().currentItem() && m_preferences.isOpenPlayer())
            openPlayer();
    }
    if (!m_preferences.isPlaying())
        player().pause();
}

void VideoPlayerManager::savePlayingSign()
{
    if (!m_videoList.current() || m_isChoiceUnread)
        return;
    const auto sign = m_videoList.current()->val.sign;
    if (m_preferences.playingVideoSign() != sign)
        m_preferences.setPlayingVideoSign(sign);
}

void VideoPlayerManager::playingSignDidChange(const QString& sign)
{
    if (m_videoList.current() && m_videoList.current()->val.sign == sign)
        return;
    if (!isVideoFilePresent(sign)) {
        // A row is deleted for a missing file, never because nobody could look.
        m_isChoiceUnread = m_library.lastReading() == LocalVideoDBManager::Reading::Busy;
        if (m_isChoiceUnread)
            m_libraryRetry.start();
        else if (m_library.lastReading() == LocalVideoDBManager::Reading::Complete)
            m_library.deleteVideo(sign);
        return;
    }
    m_isChoiceUnread = false;
    player().pause();
    reloadVideoList();
    openPlayer();
}

bool VideoPlayerManager::isVideoFilePresent(const QString& sign)
{
    const auto row = m_library.video(sign);
    const auto url = row ? videoUrl(row->url) : std::nullopt;
    return url && videoFileExists(*url);
}

void VideoPlayerManager::observePreferences()
{
    auto& tokens = m_observerDisposables;
    tokens.push_back(observe(m_preferences,
        &Preferences::playingVideoSignChanged,
        [this](const std::optional<QString>& sign) {
            if (!sign)
                qFatal("The playing video's sign was taken away.");
            playingSignDidChange(*sign);
        }));
    tokens.push_back(observe(m_preferences, &Preferences::isPlayingChanged, [this](bool isPlaying) {
        setPlaying(isPlaying);
    }));
    tokens.push_back(observe(m_preferences, &Preferences::playModelChanged, [this](qint64 value) {
        m_playModel =
            optionFromRawValue<VideoPlayerPlayModel>(value).value_or(VideoPlayerPlayModel::single);
        reloadVideoList();
    }));
    tokens.push_back(observe(m_preferences, &Preferences::isOpenPlayerChanged, [this](bool isOpen) {
        if (isOpen)
            openPlayer();
        else
            closePlayer();
    }));
    tokens.push_back(observe(m_preferences, &Preferences::screenIndexChanged, [this](qint64 index) {
        m_screenType = VideoPlayerScreenType::lonely;
        m_screenIndex = index;
        rebuildWindows();
    }));
    tokens.push_back(
        observe(m_preferences, &Preferences::monitorArrangeChanged, [this](qint64 value) {
            m_screenType = optionFromRawValue<VideoPlayerScreenType>(value).value_or(
                VideoPlayerScreenType::lonely);
            rebuildWindows();
        }));
    // The companion's volume and mute reach a player that is there; a later one asks for them.
    tokens.push_back(observe(m_preferences, &Preferences::volumeChanged, [this](float value) {
        if (m_player)
            m_player->setVolume(value);
    }));
    tokens.push_back(observe(m_preferences, &Preferences::muteChanged, [this](bool value) {
        if (m_player)
            m_player->setMuted(value);
    }));
}
