#include "platform/linux/display/x11/X11WindowShape.h"

#include <xcb/shape.h>

#include <vector>

namespace {

using Rectangles = std::vector<xcb_rectangle_t>;

void set(X11Connection& x11, xcb_window_t window, xcb_shape_kind_t kind, const Rectangles& parts)
{
    xcb_shape_rectangles(x11.get(),
        XCB_SHAPE_SO_SET,
        kind,
        XCB_CLIP_ORDERING_YX_BANDED, // as regions have them
        window,
        0,
        0,
        static_cast<std::uint32_t>(parts.size()),
        parts.data());
}

void unset(X11Connection& x11, xcb_window_t window, xcb_shape_kind_t kind)
{
    xcb_shape_mask(x11.get(), XCB_SHAPE_SO_SET, kind, window, 0, 0, XCB_PIXMAP_NONE);
}

} // namespace

bool X11WindowShape::setInput(X11Connection& x11, xcb_window_t window, Input input)
{
    if (!hasExtension(x11.get(), xcb_shape_id))
        return false;
    if (input == Input::LetThrough)
        set(x11, window, XCB_SHAPE_SK_INPUT, {});
    else
        unset(x11, window, XCB_SHAPE_SK_INPUT);
    return true;
}

void X11WindowShape::setArea(X11Connection& x11, xcb_window_t window, const QRegion& area)
{
    if (!hasExtension(x11.get(), xcb_shape_id))
        return;
    if (area.isEmpty()) {
        unset(x11, window, XCB_SHAPE_SK_BOUNDING);
        return;
    }
    Rectangles parts;
    for (const auto& part : area)
        parts.push_back({static_cast<std::int16_t>(part.x()),
            static_cast<std::int16_t>(part.y()),
            static_cast<std::uint16_t>(part.width()),
            static_cast<std::uint16_t>(part.height())});
    set(x11, window, XCB_SHAPE_SK_BOUNDING, parts);
}
