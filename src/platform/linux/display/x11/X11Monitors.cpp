#include "platform/linux/display/x11/X11Monitors.h"

#include <xcb/randr.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

Screen wholeRoot(const X11Connection& x11)
{
    const auto& screen = x11.screen();
    return {u"screen"_s, {0, 0, screen.width_in_pixels, screen.height_in_pixels}};
}

} // namespace

std::vector<Screen> X11Monitors::read(X11Connection& x11)
{
    if (!x11.knowsMonitors())
        return {wholeRoot(x11)};
    const auto reply = own(xcb_randr_get_monitors_reply(
        x11.get(), xcb_randr_get_monitors(x11.get(), x11.root(), 1), nullptr));
    if (!reply)
        return {};

    // All names are asked for before the first answer is awaited.
    struct Pending {
        xcb_get_atom_name_cookie_t name;
        QRect frame;
        bool isPrimary;
    };
    std::vector<Pending> pending;
    for (auto monitor = xcb_randr_get_monitors_monitors_iterator(reply.get()); monitor.rem > 0;
         xcb_randr_monitor_info_next(&monitor)) {
        const auto& information = *monitor.data;
        const QRect frame(information.x, information.y, information.width, information.height);
        pending.push_back(
            {xcb_get_atom_name(x11.get(), information.name), frame, information.primary != 0});
    }
    std::stable_partition(
        pending.begin(), pending.end(), [](const Pending& monitor) { return monitor.isPrimary; });

    std::vector<Screen> monitors;
    for (const auto& [cookie, frame, isPrimary] : pending) {
        const auto name = own(xcb_get_atom_name_reply(x11.get(), cookie, nullptr));
        if (name && !frame.isEmpty())
            monitors.push_back({QString::fromUtf8(xcb_get_atom_name_name(name.get()),
                                    xcb_get_atom_name_name_length(name.get())),
                frame});
    }
    return monitors;
}
