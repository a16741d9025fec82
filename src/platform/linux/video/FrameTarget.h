#pragma once

#include <QRect>
#include <QSize>

#include <cmath>
#include <memory>

/// A surface of a display server that shows pictures, in the form that the server's own presenter
/// knows.
class NativeSurface {
public:
    NativeSurface() = default;
    virtual ~NativeSurface() = default;
    NativeSurface(const NativeSurface&) = delete;
    NativeSurface& operator=(const NativeSurface&) = delete;
};

/// Where the picture of one view goes.
struct FrameTarget {
    /// Shared, because the render thread may be presenting to a surface that its window gives up.
    /// Null: nowhere.
    std::shared_ptr<NativeSurface> surface;
    QSize bufferSize; ///< of the surface, in pixels
    QRect rectangle;  ///< the view's in its window, in desktop units
    double scale = 1; ///< pixels for each desktop unit

    bool operator==(const FrameTarget&) const = default;

    /// The view's rectangle in pixels; the picture is drawn in this size.
    QRect pixelRectangle() const
    {
        const auto pixels = [this](int length) {
            return static_cast<int>(std::lround(length * scale));
        };
        return {pixels(rectangle.x()),
            pixels(rectangle.y()),
            pixels(rectangle.width()),
            pixels(rectangle.height())};
    }

    /// The part of it that the surface shows.
    QRect visiblePixels() const { return pixelRectangle() & QRect(QPoint(), bufferSize); }
};
