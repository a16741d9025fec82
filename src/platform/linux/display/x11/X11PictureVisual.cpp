#include "platform/linux/display/x11/X11PictureVisual.h"

#include <QtGlobal>

namespace {

X11PictureVisual find(X11Connection& x11)
{
    const auto& screen = x11.screen();
    X11PictureVisual found;
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0;
         xcb_depth_next(&depth)) {
        if (depth.data->depth != 24)
            continue;
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual)) {
            const auto& type = *visual.data;
            if (type._class != XCB_VISUAL_CLASS_TRUE_COLOR || type.red_mask != 0xff0000 ||
                type.green_mask != 0xff00 || type.blue_mask != 0xff)
                continue;
            if (found.identifier == XCB_NONE || type.visual_id == screen.root_visual)
                found = {type.visual_id, depth.data->depth, XCB_NONE};
        }
    }
    if (found.identifier == XCB_NONE)
        qFatal("The display has no 24-bit true-colour visual.");
    found.colormap = xcb_generate_id(x11.get());
    xcb_create_colormap(
        x11.get(), XCB_COLORMAP_ALLOC_NONE, found.colormap, screen.root, found.identifier);
    return found;
}

} // namespace

const X11PictureVisual& X11PictureVisual::of(X11Connection& x11)
{
    static const auto visual = find(x11);
    return visual;
}
