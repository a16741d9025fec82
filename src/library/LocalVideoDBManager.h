#pragma once

#include "identity/AppInfo.h"
#include "library/Database.h"
#include "records/VideoDetail.h"

#include <QStringList>

#include <cstdint>
#include <cstdio>
#include <deque>
#include <optional>

/// Read access to the shared library of imported videos, the table `LocalVideos` of the file
/// `Fendix.db`, whose schema is its importing companion's. Main thread only.
///
/// The file may be replaced, deleted and made again, or be away for a while: each query looks
/// whether it is still the one that was opened. No call waits for another process's lock longer
/// than 50 ms.
///
/// Nothing here fails towards the caller: what cannot be read is not there. The lines on standard
/// output (the path, "db open failure", "delete SIGN true") and the one on standard error are for
/// whoever looks for the reason.
class LocalVideoDBManager {
public:
    static LocalVideoDBManager& shared();

    /// Opens the database that `makeDatabase` finds.
    LocalVideoDBManager(const AppInfo& appInfo, const Bundle& bundle);

    /// The database at its place in the group container, not opened yet. Where it is missing, or
    /// has no table, it is filled from the bundle's (`LibrarySeed`); why that failed, if it does,
    /// goes to `diagnostics`.
    static Database makeDatabase(
        const AppInfo& appInfo, const Bundle& bundle, std::FILE* diagnostics = stdout);

    /// Every row, in the table's order. (A deque, because records are not moved but copied, and a
    /// growing vector would copy them again and again.)
    std::deque<VideoDetail> allVideos();

    /// The first row of that sign.
    std::optional<VideoDetail> video(const QString& sign);

    /// How far the last of the two queries above got: to the end, nowhere because another process
    /// has locked the file, or not to the end for any other reason. A library that cannot be read
    /// just now has not lost its rows.
    enum class Reading { Complete, Busy, Failed };
    Reading lastReading() const { return m_lastReading; }

    void deleteVideo(const QString& sign);

private:
    /// What changes when a file is replaced or written.
    struct FileVersion {
        std::uint64_t device, inode;
        std::int64_t size, seconds, nanoseconds;
        bool operator==(const FileVersion&) const = default;
    };

    void open();
    std::optional<FileVersion> versionOfFile() const;
    void openAnewIfChanged();
    std::deque<VideoDetail> videos(const QString& sql, const QStringList& arguments);
    void reportFailure(const QString& reason);

    Database m_db;
    std::optional<QString> m_seed;
    std::optional<FileVersion> m_openedVersion; // none also where it has to be opened anew
    bool m_isOpenFailureReported = false;
    QStringList m_reportedFailures; // since the library could last be read
    Reading m_lastReading = Reading::Failed;
};
