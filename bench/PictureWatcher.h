#pragma once

#include "desktop/X11Desktop.h"

#include <QElapsedTimer>
#include <QRect>

#include <functional>

#include <vector>

/// Hears of every picture that is put on a desktop (the X extension DAMAGE), whoever puts it.
class PictureWatcher {
public:
    struct Picture {
        double seconds; ///< since the watcher was made
        QRect area;
    };

    explicit PictureWatcher(const X11Desktop& desktop);
    ~PictureWatcher();
    PictureWatcher(const PictureWatcher&) = delete;
    PictureWatcher& operator=(const PictureWatcher&) = delete;

    /// Everything that comes within the time and is at least as large as a monitor's quarter.
    std::vector<Picture> watch(
        double seconds, const std::function<void(const Picture&)>& seen = {});

private:
    bool next(Picture& picture, int milliseconds);

    xcb_connection_t* m_connection;
    std::uint32_t m_damage;
    std::uint8_t m_firstEvent;
    QElapsedTimer m_clock;
};
