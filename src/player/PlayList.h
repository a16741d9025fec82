#pragma once

#include "library/LocalVideoDBManager.h"
#include "library/OpeningRecord.h"
#include "platform/PlayerItem.h"
#include "player/PlayableFileWatch.h"
#include "player/VideoInfoList.h"
#include "preferences/VideoPlayerOptions.h"

#include <QObject>
#include <QSet>
#include <QTimer>
#include <QUrl>

#include <memory>
#include <mutex>
#include <optional>

/// The library's videos in the order in which they play, with a cursor, and what is known of them:
/// whose file is missing, which have failed, which has ended an earlier process. Main thread only.
class PlayList : public QObject {
    Q_OBJECT

public:
    /// Borrows its collaborators. Empty until it is first loaded.
    PlayList(LocalVideoDBManager& library, OpeningRecord& openings);
    ~PlayList() override;

    /// Reads the library and puts the cursor on that sign, else on the first video. While the
    /// library cannot be read, a list that there is stays, and `libraryRetryDue` follows.
    void reload(VideoPlayerPlayModel playModel, const std::optional<QString>& sign);
    bool isUnread() const { return m_isUnread; }

    bool isEmpty() const { return m_videoList.count() == 0; }
    /// None for an empty list.
    std::optional<QString> currentSign() const;
    /// False at the end of the list, where the cursor stays.
    bool advance();
    void moveToHead() { m_videoList.moveToHead(); }

    /// Whether the video that somebody has chosen can be tried; then nothing is held against it any
    /// more. The row of one whose file is missing is deleted, but never because nobody could look:
    /// then the choice is unread, and `libraryRetryDue` follows.
    bool admitChoice(const QString& sign);
    bool isChoiceUnread() const { return m_isChoiceUnread; }
    /// Whether it was unread; it is not any more.
    bool takeUnreadChoice();

    /// Says which video an earlier process was opening when it ended. It is left out from now on,
    /// until somebody chooses it.
    void recallUnfinishedOpening();
    void forgive(const QString& sign) { m_openings.forgive(sign); }
    /// Reads whom the companion has forgiven.
    void readSuspects() { m_openings.refresh(); }

    /// Moves the cursor to the first video, from the current one on, that can be tried, and opens
    /// it. None where there is no such video.
    std::unique_ptr<PlayerItem> openPlayable();
    /// What was opened last; none where nothing could be.
    const std::optional<VideoDetail>& opened() const { return m_opened; }
    /// What was opened is ready, cannot be played, or has played to its end.
    void noteReady();
    void noteFailure(const PlayerItem& item);
    void noteEnd();
    /// Videos that have failed can be tried again.
    void forgetFailures() { m_failedFiles.clear(); }

    /// Looks for a file that can be tried (again): the current video's, or any, the current one's
    /// first.
    enum class Watched { Current, Any };
    void watchFiles(Watched watched);
    void stopWatching() { m_fileWatch.stop(); }

Q_SIGNALS:
    /// The cursor is on its video; the watch has ended.
    void playableFileFound();
    /// The list or the choice can be read again, perhaps.
    void libraryRetryDue();

private:
    LocalVideoDBManager& m_library;
    OpeningRecord& m_openings;
    VideoInfoList m_videoList;
    std::mutex m_videoListLocker; // held while the list is rebuilt; not recursive
    QTimer m_libraryRetry;
    bool m_isUnread = false;       // the library could not be read when the list was built
    bool m_isChoiceUnread = false; // and when the chosen video was looked up
    std::optional<VideoDetail> m_opened;
    QSet<QString> m_failedFiles; // since a video has last played
    QTimer m_openingTime;        // running while an item is new
    PlayableFileWatch m_fileWatch;
};
