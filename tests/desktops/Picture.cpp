#include "desktops/Picture.h"

namespace {

constexpr int low = 40;
constexpr int high = 215;

bool isAlike(QRgb one, QRgb other)
{
    constexpr int shade = 8;
    return qAbs(qRed(one) - qRed(other)) <= shade && qAbs(qGreen(one) - qGreen(other)) <= shade &&
           qAbs(qBlue(one) - qBlue(other)) <= shade;
}

} // namespace

bool Picture::isRed(QRgb pixel)
{
    return qRed(pixel) >= high && qGreen(pixel) <= low && qBlue(pixel) <= low;
}

bool Picture::isLime(QRgb pixel)
{
    return qRed(pixel) <= low && qGreen(pixel) >= high && qBlue(pixel) <= low;
}

int Picture::others(const QImage& picture, const QRect& area, const IsSuch& isSuch)
{
    int found = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            found += isSuch(picture.pixel(x, y)) ? 0 : 1;
    }
    return found;
}

bool Picture::isMostly(const QImage& picture, const QRect& area, const IsSuch& isSuch)
{
    return others(picture, area, isSuch) <= area.width() * area.height() / 10;
}

Picture::Difference Picture::difference(const QImage& one, const QImage& other, const QRect& area)
{
    Difference found;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (isAlike(one.pixel(x, y), other.pixel(x, y)))
                continue;
            found.bounds |= QRect(x, y, 1, 1);
            ++found.pixels;
        }
    }
    return found;
}
