#include "platform/linux/x11/X11Monitors.h"

#include "platform/linux/x11/X11Connection.h"

#include <xcb/randr.h>

QHash<QString, QRect> X11Monitors::frames()
{
    auto* const x11 = X11Connection::shared();
    if (!x11 || !hasExtension(x11->get(), xcb_randr_id))
        return {};
    const auto monitors = own(xcb_randr_get_monitors_reply(
        x11->get(), xcb_randr_get_monitors(x11->get(), x11->root(), 1), nullptr));
    if (!monitors)
        return {};

    // All names are asked for before the first answer is awaited.
    struct Pending {
        xcb_get_atom_name_cookie_t name;
        QRect frame;
    };
    std::vector<Pending> pending;
    for (auto monitor = xcb_randr_get_monitors_monitors_iterator(monitors.get()); monitor.rem > 0;
         xcb_randr_monitor_info_next(&monitor)) {
        const auto& information = *monitor.data;
        pending.push_back({xcb_get_atom_name(x11->get(), information.name),
            QRect(information.x, information.y, information.width, information.height)});
    }
    QHash<QString, QRect> frames;
    for (const auto& [cookie, frame] : pending) {
        if (const auto name = own(xcb_get_atom_name_reply(x11->get(), cookie, nullptr)))
            frames.insert(QString::fromUtf8(xcb_get_atom_name_name(name.get()),
                              xcb_get_atom_name_name_length(name.get())),
                frame);
    }
    return frames;
}
