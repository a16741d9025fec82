#pragma once

#include "library/VideoFacts.h"

#include <QString>
#include <QtGlobal>

#include <functional>
#include <variant>

/// Why a file is not a video that could be played, for people.
struct ProbeFailure {
    QString reason;
};

/// What a video file says about itself (FFmpeg's libavformat reads it). Reads the whole file once,
/// for its sign. `progress` is told how many bytes came since it was told last.
std::variant<VideoFacts, ProbeFailure> probeVideo(
    const QString& path, const std::function<void(qint64 bytes)>& progress = {});
