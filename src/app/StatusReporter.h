#pragma once

#include "base/Disposable.h"
#include "player/VideoPlayerManager.h"
#include "preferences/Preferences.h"

#include <vector>

/// Tells the host, for other programs, what the helper means to show, and again when that changes.
class StatusReporter {
public:
    /// Borrows both.
    StatusReporter(const Preferences& preferences, const VideoPlayerManager& manager);

private:
    void report() const;

    const Preferences& m_preferences;
    const VideoPlayerManager& m_manager;
    std::vector<Disposable> m_observations;
};
