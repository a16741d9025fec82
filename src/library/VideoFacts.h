#pragma once

#include <QString>
#include <QtGlobal>

/// What a video file says about itself, as far as the library keeps it.
struct VideoFacts {
    QString sign;       ///< derived from the content: 24 hexadecimal digits
    QString title;      ///< the file's own, else its name without the extension
    qint64 seconds = 0; ///< rounded to the nearest, at least 1
    qint64 bytes = 0;
    qint64 width = 0;           ///< pixels, as it is seen: turned, and with square pixels
    qint64 height = 0;          ///< the same
    qint64 framesPerSecond = 0; ///< rounded; 0 where unknown
    qint64 bitsPerSecond = 0;
    bool hasSound = false;

    QString ratio() const; ///< "16:9"
};
