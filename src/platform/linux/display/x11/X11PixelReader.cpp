#include "platform/linux/display/x11/X11PixelReader.h"

#include "platform/linux/display/x11/SharedCanvas.h"

#include <cstring>

namespace {

using Pixels = std::vector<std::uint32_t>;

std::size_t pixelCount(const QRect& area)
{
    return static_cast<std::size_t>(area.width()) * static_cast<std::size_t>(area.height());
}

bool hasColours(std::uint8_t depth)
{
    return depth == 24 || depth == 32;
}

Pixels copied(const std::uint8_t* bytes, const QRect& area)
{
    Pixels pixels(pixelCount(area));
    std::memcpy(pixels.data(), bytes, pixels.size() * sizeof(pixels.front()));
    return pixels;
}

std::optional<Pixels> readShared(
    X11Connection& x11, xcb_drawable_t drawable, const QRect& area, const SharedCanvas& canvas)
{
    const auto cookie = xcb_shm_get_image(x11.get(),
        drawable,
        static_cast<std::int16_t>(area.x()),
        static_cast<std::int16_t>(area.y()),
        static_cast<std::uint16_t>(area.width()),
        static_cast<std::uint16_t>(area.height()),
        ~0U,
        XCB_IMAGE_FORMAT_Z_PIXMAP,
        canvas.segment(),
        0);
    const auto image = own(xcb_shm_get_image_reply(x11.get(), cookie, nullptr));
    if (!image || !hasColours(image->depth))
        return std::nullopt;
    return copied(canvas.memory().pixels(), area);
}

std::optional<Pixels> readSent(X11Connection& x11, xcb_drawable_t drawable, const QRect& area)
{
    const auto cookie = xcb_get_image(x11.get(),
        XCB_IMAGE_FORMAT_Z_PIXMAP,
        drawable,
        static_cast<std::int16_t>(area.x()),
        static_cast<std::int16_t>(area.y()),
        static_cast<std::uint16_t>(area.width()),
        static_cast<std::uint16_t>(area.height()),
        ~0U);
    const auto image = own(xcb_get_image_reply(x11.get(), cookie, nullptr));
    if (!image || !hasColours(image->depth) ||
        static_cast<std::size_t>(xcb_get_image_data_length(image.get())) !=
            pixelCount(area) * sizeof(std::uint32_t))
        return std::nullopt;
    return copied(xcb_get_image_data(image.get()), area);
}

} // namespace

std::optional<Pixels> X11PixelReader::read(
    X11Connection& x11, xcb_drawable_t drawable, const QRect& area)
{
    constexpr std::size_t worthSharing = 16'384;
    if (pixelCount(area) >= worthSharing) {
        const auto canvas =
            SharedCanvas::create(x11.get(), area.size(), SharedCanvas::Access::Write);
        if (canvas && canvas->segment() != XCB_NONE)
            return readShared(x11, drawable, area, *canvas);
    }
    return readSent(x11, drawable, area);
}
