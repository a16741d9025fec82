#include "platform/linux/display/x11/X11Connection.h"

#include <QAbstractEventDispatcher>

#include <xcb/randr.h>
#include <xcb/screensaver.h>
#include <xcb/xinput.h>

#include <utility>

namespace {

template <typename Event>
const Event& as(const xcb_generic_event_t& event)
{
    return reinterpret_cast<const Event&>(event); // how xcb's events are meant to be read
}

std::uint8_t kind(const xcb_generic_event_t& event)
{
    constexpr std::uint8_t sentByClient = 0x80;
    return event.response_type & static_cast<std::uint8_t>(~sentByClient);
}

/// Of the pointing devices' events that we select, the touches name a window; the raw ones come
/// from the devices themselves.
xcb_window_t windowOfInput(const xcb_input_touch_begin_event_t& event)
{
    return event.event_type == XCB_INPUT_TOUCH_BEGIN ? event.event : XCB_NONE;
}

xcb_window_t windowOf(const xcb_generic_event_t& event)
{
    switch (kind(event)) {
    case XCB_EXPOSE:
        return as<xcb_expose_event_t>(event).window;
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE:
        return as<xcb_button_press_event_t>(event).event;
    case XCB_DESTROY_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_MAP_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
        return as<xcb_destroy_notify_event_t>(event).window; // all begin alike
    case XCB_PROPERTY_NOTIFY:
        return as<xcb_property_notify_event_t>(event).window;
    case XCB_GE_GENERIC:
        return windowOfInput(as<xcb_input_touch_begin_event_t>(event));
    default:
        return XCB_NONE;
    }
}

/// Whether the root window tells of one of its children. One that was merely made is not shown.
bool isOfRootChild(const xcb_generic_event_t& event, xcb_window_t root)
{
    switch (kind(event)) {
    case XCB_DESTROY_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_MAP_NOTIFY:
    case XCB_REPARENT_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
    case XCB_CIRCULATE_NOTIFY:
        return as<xcb_map_notify_event_t>(event).event == root; // all begin alike
    default:
        return false;
    }
}

X11Hints readHints(xcb_connection_t* connection)
{
    X11Hints hints(new xcb_ewmh_connection_t{});
    // False where the connection broke meanwhile, of which its owner is told.
    if (!xcb_ewmh_init_atoms_replies(
            hints.get(), xcb_ewmh_init_atoms(connection, hints.get()), nullptr))
        *hints = {};
    return hints;
}

} // namespace

std::unique_ptr<X11Connection> X11Connection::open()
{
    int screenNumber = 0;
    X11ConnectionHandle handle(xcb_connect(nullptr, &screenNumber));
    if (xcb_connection_has_error(handle.get()))
        return nullptr;
    return std::make_unique<X11Connection>(std::move(handle), screenNumber);
}

X11Connection::X11Connection(X11ConnectionHandle connection, int screenNumber)
    : m_connection(std::move(connection)),
      m_hints(readHints(m_connection.get())),
      m_notifier(xcb_get_file_descriptor(m_connection.get()), QSocketNotifier::Read)
{
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get()));
    while (screenNumber-- > 0 && screens.rem > 1)
        xcb_screen_next(&screens);
    m_screen = screens.data;

    const std::uint32_t events =
        XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY |
        XCB_EVENT_MASK_STRUCTURE_NOTIFY; // told of the root window's size and of set monitors
    xcb_change_window_attributes(get(), root(), XCB_CW_EVENT_MASK, &events);
    followMonitors();
    askForTouches();
    followScreenSaver();

    connect(&m_notifier, &QSocketNotifier::activated, this, &X11Connection::processEvents);
    // Waiting for a reply may read events into xcb's own queue, where no descriptor tells of them.
    // A loop that does not block says that it is awake instead.
    auto* const dispatcher = QAbstractEventDispatcher::instance();
    connect(
        dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &X11Connection::processEvents);
    connect(dispatcher, &QAbstractEventDispatcher::awake, this, &X11Connection::processEvents);
}

void X11Connection::followMonitors()
{
    if (!hasExtension(get(), xcb_randr_id))
        return;
    // The server tells a client only what the client's version knows.
    const auto version =
        own(xcb_randr_query_version_reply(get(), xcb_randr_query_version(get(), 1, 5), nullptr));
    m_knowsMonitors = version && (version->major_version > 1 ||
                                     (version->major_version == 1 && version->minor_version >= 5));
    m_randrFirstEvent = xcb_get_extension_data(get(), &xcb_randr_id)->first_event;
    xcb_randr_select_input(get(),
        root(),
        XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
            XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY);
}

void X11Connection::askForTouches()
{
    if (!hasExtension(get(), xcb_input_id))
        return;
    const auto version = own(
        xcb_input_xi_query_version_reply(get(), xcb_input_xi_query_version(get(), 2, 2), nullptr));
    m_knowsTouches = version && (version->major_version > 2 ||
                                    (version->major_version == 2 && version->minor_version >= 2));
}

void X11Connection::followScreenSaver()
{
    if (!hasExtension(get(), xcb_screensaver_id))
        return;
    m_screenSaverEvent = static_cast<std::uint8_t>(
        xcb_get_extension_data(get(), &xcb_screensaver_id)->first_event + XCB_SCREENSAVER_NOTIFY);
    xcb_screensaver_select_input(get(), root(), XCB_SCREENSAVER_EVENT_NOTIFY_MASK);
}

xcb_atom_t X11Connection::atom(const std::string& name)
{
    const auto [entry, isNew] = m_atoms.try_emplace(name, XCB_ATOM_NONE);
    if (isNew) {
        const auto cookie =
            xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.c_str());
        if (const auto reply = own(xcb_intern_atom_reply(get(), cookie, nullptr)))
            entry->second = reply->atom;
    }
    return entry->second;
}

std::vector<std::uint32_t> X11Connection::property(
    xcb_window_t window, xcb_atom_t name, xcb_atom_t type)
{
    return property(askForProperty(window, name, type));
}

X11PropertyCookie X11Connection::askForProperty(
    xcb_window_t window, xcb_atom_t name, xcb_atom_t type)
{
    constexpr std::uint32_t longestInWords = 4096;
    return {xcb_get_property(get(), 0, window, name, type, 0, longestInWords), type};
}

std::vector<std::uint32_t> X11Connection::property(const X11PropertyCookie& cookie)
{
    const auto reply = own(xcb_get_property_reply(get(), cookie.cookie, nullptr));
    if (!reply || reply->type != cookie.type || reply->format != 32)
        return {};
    const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {values, values + reply->value_len};
}

Disposable X11Connection::watch(xcb_window_t window, EventHandler handler)
{
    return add({window, 0, std::move(handler)});
}

Disposable X11Connection::watchKind(std::uint8_t code, EventHandler handler)
{
    return add({XCB_NONE, code, std::move(handler)});
}

Disposable X11Connection::add(Watch added)
{
    const auto watch = m_watches.emplace_back(std::make_shared<Watch>(std::move(added)));
    return Disposable([this, watch] {
        watch->handler = nullptr;
        std::erase(m_watches, watch);
    });
}

bool X11Connection::isOwn(xcb_window_t window) const
{
    const auto& setup = *xcb_get_setup(get());
    return (window & ~setup.resource_id_mask) == setup.resource_id_base;
}

void X11Connection::synchronize()
{
    own(xcb_get_input_focus_reply(get(), xcb_get_input_focus(get()), nullptr));
}

void X11Connection::processEvents()
{
    while (const auto event = own(xcb_poll_for_event(get())))
        deliver(*event);
    xcb_flush(get());
    if (m_notifier.isEnabled() && xcb_connection_has_error(get())) {
        m_notifier.setEnabled(false); // or it would report the closed socket for ever
        Q_EMIT lost();
    }
}

void X11Connection::deliver(const xcb_generic_event_t& event)
{
    if (kind(event) == XCB_PROPERTY_NOTIFY) {
        const auto& change = as<xcb_property_notify_event_t>(event);
        if (change.window == root()) {
            Q_EMIT rootPropertyChanged(change.atom);
            return;
        }
    }
    if (kind(event) == XCB_CONFIGURE_NOTIFY &&
        as<xcb_configure_notify_event_t>(event).window == root()) {
        Q_EMIT monitorsChanged();
        return;
    }
    if (isOfRootChild(event, root())) {
        Q_EMIT rootChildrenChanged(); // a window's own watch is told by the window itself
        return;
    }
    const bool isOfRandr = m_randrFirstEvent != 0 && kind(event) >= m_randrFirstEvent &&
                           kind(event) <= m_randrFirstEvent + XCB_RANDR_NOTIFY;
    if (isOfRandr) {
        Q_EMIT monitorsChanged();
        return;
    }
    if (m_screenSaverEvent != 0 && kind(event) == m_screenSaverEvent) {
        Q_EMIT screenSaverChanged();
        return;
    }
    const auto watches = m_watches; // a copy: a handler may end its own watch
    for (const auto& watch : watches) {
        const bool isMeant = watch->window == XCB_NONE ? watch->code == kind(event)
                                                       : watch->window == windowOf(event);
        if (!isMeant)
            continue;
        if (const auto handler = watch->handler)
            handler(event);
    }
}
