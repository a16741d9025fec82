#include "desktop/DesktopProgram.h"

#include <array>
#include <utility>

namespace {

std::uint16_t word(int number)
{
    return static_cast<std::uint16_t>(number);
}

} // namespace

DesktopProgram::DesktopProgram(const X11Desktop& desktop, const Look& look)
    : m_desktop(desktop),
      m_look(look),
      m_connection(xcb_connect(desktop.display().toLatin1().constData(), nullptr)),
      m_window(xcb_generate_id(m_connection.get())),
      m_graphics(xcb_generate_id(m_connection.get()))
{
    auto* const x11 = m_connection.get();
    const auto [depth, visual] = desktop.visual(look.hasAlpha);
    const auto colormap = xcb_generate_id(x11);
    xcb_create_colormap(x11, XCB_COLORMAP_ALLOC_NONE, colormap, desktop.root(), visual);
    m_picture = makePixmap(depth);
    xcb_create_gc(x11, m_graphics, m_picture, 0, nullptr);
    const auto& frame = look.frame;
    constexpr auto given =
        XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
    constexpr auto events = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;
    const std::array<std::uint32_t, 4> values{m_picture, 0, events, colormap};
    xcb_create_window(x11,
        depth,
        m_window,
        desktop.root(),
        static_cast<std::int16_t>(frame.x()),
        static_cast<std::int16_t>(frame.y()),
        word(frame.width()),
        word(frame.height()),
        0,
        0,
        visual,
        given,
        values.data());
    if (look.hasRootPixmap)
        m_rootPicture = makePixmap(desktop.visual(false).first);
    setPicture(look.left, look.right);
    setProperty(m_window,
        "_NET_WM_WINDOW_TYPE",
        XCB_ATOM_ATOM,
        {desktop.atom("_NET_WM_WINDOW_TYPE_DESKTOP")});
    // "The user wants it here": window managers place the others as they like.
    std::vector<std::uint32_t> hints(18);
    hints.front() = 1;
    setProperty(m_window, "WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS, hints);
    xcb_map_window(x11, m_window);
    xcb_flush(x11);
}

xcb_pixmap_t DesktopProgram::makePixmap(std::uint8_t depth)
{
    const auto pixmap = xcb_generate_id(m_connection.get());
    xcb_create_pixmap(m_connection.get(),
        depth,
        pixmap,
        m_desktop.root(),
        word(m_look.frame.width()),
        word(m_look.frame.height()));
    return pixmap;
}

void DesktopProgram::paint(xcb_pixmap_t pixmap, const QRect& frame, const QColor& colour)
{
    auto* const x11 = m_connection.get();
    const std::uint32_t value = colour.rgba(); // premultiplied, as it is opaque or nothing at all
    xcb_change_gc(x11, m_graphics, XCB_GC_FOREGROUND, &value);
    const xcb_rectangle_t rectangle{static_cast<std::int16_t>(frame.x()),
        static_cast<std::int16_t>(frame.y()),
        word(frame.width()),
        word(frame.height())};
    xcb_poly_fill_rectangle(x11, pixmap, m_graphics, 1, &rectangle);
}

void DesktopProgram::paintPicture(xcb_pixmap_t pixmap, const QRect& part)
{
    const int middle = m_look.frame.width() / 2;
    const int height = m_look.frame.height();
    paint(pixmap, part & QRect(0, 0, middle, height), m_look.left);
    paint(pixmap, part & QRect(middle, 0, m_look.frame.width() - middle, height), m_look.right);
}

void DesktopProgram::drawIcon(const QRect& frame, const QColor& colour)
{
    paint(m_picture, frame, colour);
    showChange(frame);
}

void DesktopProgram::removeIcon(const QRect& frame)
{
    paintPicture(m_picture, frame);
    showChange(frame);
}

void DesktopProgram::setPicture(const QColor& left, const QColor& right)
{
    m_look.left = left;
    m_look.right = right;
    const QRect all(QPoint(), m_look.frame.size());
    paintPicture(m_picture, all);
    showChange(all);
    if (m_rootPicture == XCB_PIXMAP_NONE)
        return;
    paintPicture(m_rootPicture, all);
    setProperty(m_desktop.root(), "_XROOTPMAP_ID", XCB_ATOM_PIXMAP, {m_rootPicture});
    xcb_flush(m_connection.get());
}

void DesktopProgram::showChange(const QRect& frame)
{
    xcb_clear_area(m_connection.get(),
        0,
        m_window,
        static_cast<std::int16_t>(frame.x()),
        static_cast<std::int16_t>(frame.y()),
        word(frame.width()),
        word(frame.height()));
    xcb_flush(m_connection.get());
}

void DesktopProgram::setProperty(
    xcb_window_t window, const char* name, xcb_atom_t type, std::vector<std::uint32_t> values)
{
    xcb_change_property(m_connection.get(),
        XCB_PROP_MODE_REPLACE,
        window,
        m_desktop.atom(name),
        type,
        32,
        static_cast<std::uint32_t>(values.size()),
        values.data());
}

std::vector<int> DesktopProgram::buttons()
{
    while (const auto event = own(xcb_poll_for_event(m_connection.get()))) {
        const int sign = (event->response_type & 0x7f) == XCB_BUTTON_PRESS ? 1 : -1;
        if (sign == 1 || (event->response_type & 0x7f) == XCB_BUTTON_RELEASE)
            m_buttons.push_back(
                sign * reinterpret_cast<const xcb_button_press_event_t&>(*event).detail);
    }
    return m_buttons;
}
