#include "player/VideoPlayerManager.h"

#include "base/Observe.h"
#include "library/VideoUrl.h"

#include <QScopedValueRollback>
#include <QUrl>

#include <chrono>
#include <cstdio>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

Player& VideoPlayerManager::player()
{
    if (!m_player)
        makePlayer();
    return *m_player;
}

void VideoPlayerManager::makePlayer()
{
    reloadVideoList();
    recallUnfinishedOpening();
    m_player = std::make_unique<Player>(makeItem(playableUrl()));
    m_player->setActionAtItemEnd(Player::ActionAtItemEnd::None);
    m_player->setVolume(m_preferences.volume());
    m_player->setMuted(m_preferences.mute());
    observeItem();
}

void VideoPlayerManager::recallUnfinishedOpening()
{
    const auto sign = m_openings.takeUnfinished();
    if (!sign)
        return;
    const auto row = m_library.video(*sign);
    const auto name = row && !row->title.isEmpty() ? row->title : *sign;
    std::fprintf(stderr,
        "The helper ended while it was opening \"%s\"; that video is left out until it is "
        "chosen.\n",
        qUtf8Printable(name));
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

/// Moves the cursor to the first video, from the current one on, whose file is there, and which has
/// neither ended an earlier process nor failed since a video has last played. None after one full
/// pass without success: going round and round would only keep the machine busy.
std::optional<QUrl> VideoPlayerManager::playableUrl()
{
    for (std::size_t tried = 0; tried < m_videoList.count(); ++tried) {
        const auto& video = m_videoList.current()->val;
        auto url = videoUrl(video.url);
        if (url && videoFileExists(*url) && !m_openings.isSuspect(video.sign) &&
            !m_failedFiles.contains(url->toLocalFile()))
            return url;
        m_videoList.advance();
    }
    return std::nullopt;
}

/// Of the current node's URL, if there is one.
std::unique_ptr<PlayerItem> VideoPlayerManager::makeItem(const std::optional<QUrl>& url)
{
    if (!url)
        return nullptr;
    m_openings.begin(m_videoList.current()->val.sign);
    m_openingTime.stop();
    return std::make_unique<PlayerItem>(*url);
}

void VideoPlayerManager::replaceItem(const std::optional<QUrl>& url)
{
    m_statusObservation.reset();
    player().replaceCurrentItem(makeItem(url));
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
        m_openingTime.start();
    if (object.status() != PlayerItem::Status::Failed)
        return;
    m_openings.finish(OpeningRecord::Outcome::DoesNotPlay);
    m_fileWatch.noteFailure(object.url().toLocalFile());
    m_failedFiles.insert(object.url().toLocalFile());
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
    m_failedFiles.clear();
    m_openings.refresh(); // the companion may have forgiven
    replaceItem(playableUrl());
    savePlayingSign();
}

void VideoPlayerManager::watchForPlayableFiles()
{
    if (!hasNothingToPlay()) {
        m_fileWatch.stop();
        return;
    }
    std::vector<PlayableFileWatch::Candidate> candidates;
    const auto add = [&](const VideoInfoNode& node) {
        const auto url = videoUrl(node.val.url);
        if (url && url->isLocalFile() && !m_openings.isSuspect(node.val.sign))
            candidates.push_back({node.val.sign, url->toLocalFile()});
    };
    const auto* const current = m_videoList.current();
    if (player().currentItem()) { // the one video that is repeated
        if (current)
            add(*current);
    } else { // any video will do, the current one first
        for (const auto* node = current; node; node = node->next.get())
            add(*node);
        for (const auto* node = m_videoList.head(); node != current; node = node->next.get())
            add(*node);
    }
    m_fileWatch.watch(std::move(candidates));
}

void VideoPlayerManager::openPlayer()
{
    if (std::exchange(m_haveScreensChangedWhileClosed, false) && !areWindowsMadeForTheScreens()) {
        orderOutWindows();
        makeWindows();
    }
    applyWindowLevelToAll();
    m_failedFiles.clear();
    auto& sharedPlayer = player();
    replaceItem(playableUrl());
    applyWindowLevelToAll();
    sharedPlayer.play();
    savePlayingSign();
}

void VideoPlayerManager::closePlayer()
{
    player().pause();
    m_fileWatch.stop();
    orderOutWindows();
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
    auto rows = m_library.allVideos();
    const auto reading = m_library.lastReading();
    m_isListUnread = reading != LocalVideoDBManager::Reading::Complete;
    if (m_isListUnread) {
        m_libraryRetry.start(reading == LocalVideoDBManager::Reading::Busy ? 1s : 5s);
        if (reading == LocalVideoDBManager::Reading::Busy || m_videoList.current())
            return; // the list stays meanwhile
    }
    m_videoList.clear();
    if (m_playModel == VideoPlayerPlayModel::random)
        rows = randomlyReordered(rows);
    for (auto& row : rows)
        m_videoList.append(std::move(row));
    m_videoList.moveToSign(m_preferences.playingVideoSign());
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
    if (std::exchange(m_isChoiceUnread, false)) {
        if (m_preferences.isOpenPlayer())
            playingSignDidChange(m_preferences.playingVideoSign().value_or(QString()));
        else
            m_isListUnread = true; // closed meanwhile: it is the first to play when it opens
    }
    if (m_isListUnread) {
        reloadVideoList();
        if (!m_isListUnread && hasNothingToPlay())
            playAgain();
    }
    if (!m_preferences.isPlaying())
        player().pause();
}

void VideoPlayerManager::savePlayingSign()
{
    if (!m_videoList.current() || m_isChoiceUnread)
        return;
    const auto sign = m_videoList.current()->val.sign;
    const QScopedValueRollback isSaving(m_isSavingSign, true);
    if (m_preferences.playingVideoSign() != sign)
        m_preferences.advancePlayingVideoSign(sign);
}

void VideoPlayerManager::playingSignDidChange(const QString& sign)
{
    if (m_videoList.current() && m_videoList.current()->val.sign == sign) {
        if (!m_isSavingSign && hasNothingToPlay()) {
            m_openings.forgive(sign);
            playAgain();
        }
        return;
    }
    if (!isVideoFilePresent(sign)) {
        // A row is deleted for a missing file, never because nobody could look.
        m_isChoiceUnread = m_library.lastReading() != LocalVideoDBManager::Reading::Complete;
        if (m_isChoiceUnread)
            m_libraryRetry.start(1s);
        else
            m_library.deleteVideo(sign);
        return;
    }
    m_isChoiceUnread = false;
    m_openings.forgive(sign);
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
        if (m_player && m_preferences.isOpenPlayer() && hasNothingToPlay())
            playNext(); // a list goes on where repeating has come to nothing
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
