#include "app/StatusReporter.h"

#include "base/Observe.h"
#include "identity/AppInfo.h"
#include "platform/HelperStatus.h"

StatusReporter::StatusReporter(const Preferences& preferences, const VideoPlayerManager& manager)
    : m_preferences(preferences), m_manager(manager)
{
    const auto reportAgain = [this] { report(); };
    m_observations.push_back(observe(preferences, &Preferences::isOpenPlayerChanged, reportAgain));
    m_observations.push_back(observe(preferences, &Preferences::isPlayingChanged, reportAgain));
    m_observations.push_back(
        observe(manager, &VideoPlayerManager::currentVideoChanged, reportAgain));
    report();
}

void StatusReporter::report() const
{
    HelperStatus::Intent intent;
    intent.version = AppInfo::shared().displayVersion();
    intent.isOpen = m_preferences.isOpenPlayer();
    intent.isPlaying = m_preferences.isPlaying();
    if (const auto& video = m_manager.currentVideo()) {
        intent.sign = video->sign;
        intent.title = video->title;
    }
    intent.nothingToPlay = m_manager.whyNothingPlays();
    HelperStatus::setIntent(intent);
}
