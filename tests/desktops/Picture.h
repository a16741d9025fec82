#pragma once

#include <QImage>
#include <QRect>

#include <functional>

/// What is seen in a picture of a screen.
namespace Picture {

using IsSuch = std::function<bool(QRgb pixel)>;

/// Within what YUV and its standards make of a pure colour.
bool isRed(QRgb pixel);
bool isLime(QRgb pixel);

/// How many pixels of an area are not such.
int others(const QImage& picture, const QRect& area, const IsSuch& isSuch);
/// Nine in ten of the area are such; the rest may be icons.
bool isMostly(const QImage& picture, const QRect& area, const IsSuch& isSuch);

struct Difference {
    QRect bounds; ///< null for none
    int pixels = 0;
};
/// To the eye: a video's frames of one colour are not quite the same.
Difference difference(const QImage& one, const QImage& other, const QRect& area);

} // namespace Picture
