#pragma once

#include "base/Disposable.h"
#include "base/NotificationCenter.h"
#include "library/LocalVideoDBManager.h"
#include "library/OpeningRecord.h"
#include "platform/DesktopWindow.h"
#include "platform/DistributedNotificationCenter.h"
#include "platform/Player.h"
#include "platform/Screen.h"
#include "platform/Workspace.h"
#include "player/PlayableFileWatch.h"
#include "player/VideoInfoList.h"
#include "preferences/Preferences.h"

#include <QObject>
#include <QSet>
#include <QTimer>
#include <QVariant>

#include <memory>
#include <mutex>
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

    // -- windows (VideoPlayerManager.cpp)

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
    void applyWindowLevel(DesktopWindow& window) const;
    void applyWindowLevelToAll() const;

    /// "screenType" (its raw value) and "screenIndex"; any other key is a property's name.
    QVariant valueForKey(const QString& key) const;
    void setScreenType(VideoPlayerScreenType screenType) { m_screenType = screenType; }
    qint64 screenIndex() const { return m_screenIndex; }
    void setScreenIndex(qint64 screenIndex) { m_screenIndex = screenIndex; }

    // -- playback (VideoPlayerManagerPlayback.cpp)

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

private:
    std::vector<Screen> chosenScreens() const;
    bool areWindowsMadeForTheScreens() const;
    void makeWindows();
    void orderOutWindows() const;
    void activeSpaceDidChangeWithNotif();
    void tapVideoPlayerViewActionWithGrSender() const;
    void updateVideoList();

    void makePlayer();
    void recallUnfinishedOpening();
    std::optional<QUrl> playableUrl();
    std::unique_ptr<PlayerItem> makeItem(const std::optional<QUrl>& url);
    void replaceItem(const std::optional<QUrl>& url);
    void observeItem();
    bool hasNothingToPlay();
    void playAgain();
    void watchForPlayableFiles();
    void observeValueForKeyPath(const QString& keyPath, const PlayerItem& object);
    void playerItemDidReachEnd();
    void readLibraryAgain();
    void playingSignDidChange(const QString& sign);
    bool isVideoFilePresent(const QString& sign);
    void observePreferences();

    Preferences& m_preferences;
    LocalVideoDBManager& m_library;
    OpeningRecord& m_openings;

    VideoPlayerScreenType m_screenType;
    qint64 m_screenIndex;
    VideoPlayerPlayModel m_playModel;
    std::unique_ptr<Player> m_player;
    std::vector<Screen> m_currentScreenList;
    std::vector<std::unique_ptr<DesktopWindow>> m_windowList; // the windows of the list above
    VideoInfoList m_videoList;
    std::mutex m_videoListLocker; // held while the list is rebuilt; not recursive
    bool m_isHideDesktopIcon = false;
    bool m_haveScreensChangedWhileClosed = false;

    std::optional<Disposable> m_statusObservation; // of the player's item
    QSet<QString> m_failedFiles;                   // since a video has last played
    bool m_isSavingSign = false;
    PlayableFileWatch m_fileWatch; // watching while there is nothing to play
    QTimer m_openingTime;          // running while an item is new
    QTimer m_libraryUpdates;       // running for a while after one
    bool m_isLibraryUpdateWaiting = false;
    QTimer m_libraryRetry;
    bool m_isListUnread = false;   // the library could not be read when the list was built
    bool m_isChoiceUnread = false; // and when the chosen video was looked up
    std::vector<Disposable> m_notificationObservers;
    std::vector<Disposable> m_observerDisposables; // of the preferences
};
