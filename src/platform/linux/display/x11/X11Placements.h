#pragma once

#include "base/Debounce.h"
#include "platform/linux/display/x11/X11ForeignDesktops.h"
#include "platform/linux/display/x11/X11WindowManager.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QRegion>
#include <QTimer>

#include <chrono>
#include <deque>

/// Where a window of ours stands among other programs' windows of type desktop.
enum class Placement {
    Behind,  ///< of type desktop too; what is transparent in theirs lets ours be seen
    InFront, ///< in the next layer: of type normal, kept below all other windows
};

/// Decides it, for each part of the screen. In front of an opaque one, otherwise behind; on
/// Cinnamon always in front.
///
/// Two windows of type desktop are stacked by chance, so neither is moved against the other: ours
/// changes the layer. It does that at most three times in ten seconds, whatever other programs do,
/// and rather stays in front. An opaque window that has gone counts for three more seconds, because
/// a desktop program that ends is mostly started again.
class X11Placements : public QObject {
    Q_OBJECT

public:
    X11Placements(X11ForeignDesktops& desktops, X11WindowManager& windowManager);

    /// For a window of ours with that frame, in root coordinates.
    Placement of(const QRect& frame) const;

Q_SIGNALS:
    /// That of some frame may be another.
    void changed();

private:
    /// What placements follow from.
    struct Decision {
        QRegion opaqueArea;
        bool isInFrontEverywhere = false;

        bool operator==(const Decision&) const = default;
    };

    Decision seen() const;
    void decide();
    void take(const Decision& decision);
    std::chrono::milliseconds timeUntilRetreat(const Decision& wanted) const;

    X11ForeignDesktops& m_desktops;
    X11WindowManager& m_windowManager;
    Decision m_decision;
    std::deque<QDeadlineTimer> m_changes; // the last ones, each until it was long ago
    QTimer m_retreat;
};
