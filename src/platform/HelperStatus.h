#pragma once

#include <QMap>
#include <QString>

#include <optional>

/// What the running helper tells other programs of the session about itself: on Linux the read-only
/// object `/com/zemra/tavelor/Helper` of the session's one helper, interface
/// `com.zemra.tavelor.Helper`, a property for each member of `Report`. Main thread only.
namespace HelperStatus {

/// What the helper is and means to show. What comes of it the host knows.
struct Intent {
    QString version;
    bool isOpen = false;
    bool isPlaying = false;
    QString sign; ///< of the current video; empty for none
    QString title;
    QString nothingToPlay; ///< why, as a sentence; empty where there is something
};
void setIntent(const Intent& intent);

struct Report {
    /// "playing", "paused", "closed", "covered", "locked", "blanked", "nothing to play" or "cannot
    /// show here". Never "playing" while nothing can be seen, as far as the helper can know.
    QString state;
    QString reason;  ///< for the last two, as a sentence; else empty
    QString problem; ///< what else people may miss, as a sentence; empty where that is nothing
    QString sign;
    QString title;
    /// By name: "shown", "covered", "closed", or "unused" where the wallpaper is not meant for it.
    QMap<QString, QString> monitors;
    QString renderer; ///< what draws the pictures
    QString decoder;  ///< "software", or the name of what decodes them; empty before the first one
    quint64 framesShown = 0; ///< since the start
    quint64 framesDropped = 0;
    QString version;

    bool operator==(const Report&) const = default;
};
/// Asked of the helper. None where there is no helper or it does not answer within a second.
std::optional<Report> read();

} // namespace HelperStatus
