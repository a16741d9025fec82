#pragma once

#include "base/Disposable.h"
#include "base/NotificationCenter.h"
#include "platform/DistributedNotificationCenter.h"
#include "platform/Player.h"
#include "platform/Workspace.h"
#include "player/DesktopWindows.h"
#include "player/PlayList.h"
#include "preferences/Preferences.h"

#include <QObject>
#include <QTimer>
#include <QVariant>

#include <memory>
#include <optional>
#include <vector>

/// Turns the shared preferences into video wallpaper: one window for each screen in use, all
/// showing the one shared player, which walks the library's play list. Main thread only.
///
/// It follows the preferences, the library's "UpdateVideoList" notification, the active space and,
/// through its delegate, the screens. Of the preferences it writes only `isPlaying` and
/// `playingVideoSign`.
class VideoPlayerManager : public QObject {
    Q_OBJECT

public:
    static VideoPlayerManager& shared();

    /// Borrows its collaborators. Shows nothing yet.
    VideoPlayerManager(Preferences& preferences,
        LocalVideoDBManager& library,
        OpeningRecord& openings,
        Workspace& workspace,
        DistributedNotificationCenter& distributedCenter,
        NotificationCenter& center);
    ~VideoPlayerManager() override;

    /// Makes all windows anew for the screens there are, and plays or closes as the preferences
    /// say.
    void createWindows();
    /// Hides the windows there are, then `createWindows`.
    void rebuildWindows();
    /// Rebuilds the windows if the screens are others than they were made for.
    void screenParametersDidChange();
    /// Whether the video covers the desktop's icons. While closed it is only remembered.
    void setHideDesktopIcon(bool isHidden);
    /// Puts the window at the level of the desktop's icons, behind or in front of them.
    void applyWindowLevel(DesktopWindow& window) const { m_windows.applyLevel(window); }
    void applyWindowLevelToAll() const { m_windows.applyLevelToAll(); }

    /// "screenType" (its raw value) and "screenIndex"; any other key is a property's name.
    QVariant valueForKey(const QString& key) const;
    void setScreenType(VideoPlayerScreenType screenType) { m_screenType = screenType; }
    qint64 screenIndex() const { return m_screenIndex; }
    void setScreenIndex(qint64 screenIndex) { m_screenIndex = screenIndex; }

    /// The shared player, made by the first call that needs it.
    Player& player();
    bool isMuted();
    void setIsMuted(bool isMuted);
    float volume(); ///< linear, 0 to 1
    void setVolume(float volume);

    void openPlayer();  ///< shows the windows and plays the current video from its start
    void closePlayer(); ///< pauses and hides the windows
    void setPlaying(bool isPlaying);
    /// What happens when an item has ended or failed.
    void playNext();
    /// Builds the play list anew, with the cursor on the sign in the preferences.
    void reloadVideoList();
    /// Stores the current video's sign in the preferences if it is not there already.
    void savePlayingSign();

    /// What plays, or shall when it can be played; none where there is nothing.
    const std::optional<VideoDetail>& currentVideo() const { return m_playList.opened(); }
    /// As a sentence; empty while something plays or could.
    QString whyNothingPlays() const;

Q_SIGNALS:
    /// The current video, or whether it can be played.
    void currentVideoChanged();

private:
    void observePreferences();
    void makeWindows();
    void activeSpaceDidChangeWithNotif();
    void tapVideoPlayerViewActionWithGrSender() const;

    void makePlayer();
    void openPlayable();
    void observeItem();
    void observeValueForKeyPath(const QString& keyPath, const PlayerItem& object);
    void playerItemDidReachEnd();
    bool hasNothingToPlay();
    void playAgain();
    void watchForPlayableFiles();

    void updateVideoList();
    void readLibraryAgain();
    void playingSignDidChange(const QString& sign);

    Preferences& m_preferences;
    VideoPlayerScreenType m_screenType;
    qint64 m_screenIndex;
    VideoPlayerPlayModel m_playModel;
    std::unique_ptr<Player> m_player;
    DesktopWindows m_windows;
    bool m_haveScreensChangedWhileClosed = false;
    PlayList m_playList;
    bool m_isSavingSign = false;
    QTimer m_libraryUpdates; // running for a while after one
    bool m_isLibraryUpdateWaiting = false;

    std::optional<Disposable> m_statusObservation; // of the player's item
    std::vector<Disposable> m_notificationObservers;
    std::vector<Disposable> m_observerDisposables; // of the preferences
};
