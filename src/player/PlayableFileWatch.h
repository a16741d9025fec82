#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QThreadPool>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

/// Looks every few seconds for a video that can be tried (again): its file is there, and is not the
/// very file that has just failed. For a player that has nothing to play: a drive is plugged in, a
/// file is repaired. A minute later a file that has not changed is tried as well, because a read
/// error may have passed.
///
/// The file system is asked on a thread of its own, because a drive that does not answer would hold
/// the caller. A look takes at most a hundredth of the time until the next one. Main thread only.
class PlayableFileWatch : public QObject {
    Q_OBJECT

public:
    PlayableFileWatch();
    /// Waits for a look under way.
    ~PlayableFileWatch() override;

    struct Candidate {
        QString sign;
        QString path;
    };
    /// Looks for the first of these, in a while and then again and again. Instead of what was
    /// looked for before.
    void watch(std::vector<Candidate> candidates);
    void stop();

    /// The file as it is now cannot be played.
    void noteFailure(const QString& path);
    void forgetFailures() { m_failures.clear(); }

Q_SIGNALS:
    /// The watch has ended with it.
    void found(const QString& sign);

private:
    /// What tells a file from what it was before.
    struct FileState {
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        std::int64_t bytes = 0;
        std::int64_t changeSeconds = 0; // of the last change of any kind
        std::int64_t changeNanoseconds = 0;
        bool operator==(const FileState&) const = default;
    };
    struct Failure {
        FileState state;
        std::chrono::steady_clock::time_point time;
    };
    static std::optional<FileState> stateOf(const QString& path);
    using Failures = QHash<QString, Failure>;

    void look();
    void finishLook(quint64 watch,
        const std::optional<QString>& sign,
        const QStringList& gone,
        std::chrono::nanoseconds duration);

    std::shared_ptr<const std::vector<Candidate>> m_candidates; // null while not watching
    quint64 m_watch = 0; // which one; answers to earlier ones are too late
    Failures m_failures;
    QTimer m_timer;
    QThreadPool m_thread; // of one thread; goes first, so that it leaves nobody behind
};
