#pragma once

#include <QString>

#include <atomic>
#include <cstdint>

/// What became of the pictures of all videos since the start. Any thread may count.
struct PictureStatistics {
    std::atomic<std::uint64_t> shown = 0;
    std::atomic<std::uint64_t> dropped = 0; ///< decoded or drawn too late, up to the latest repeat
    QString decoder; ///< main thread: "software", or libmpv's name of it; empty before the first
};
