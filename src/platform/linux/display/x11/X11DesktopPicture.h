#pragma once

#include "base/Debounce.h"
#include "base/Disposable.h"
#include "platform/linux/display/PixelMask.h"
#include "platform/linux/display/x11/X11Connection.h"

#include <QRect>
#include <QRegion>

#include <functional>
#include <optional>
#include <variant>

/// What another program draws on its desktop, also where it is covered: all of it is read once, and
/// then what it draws anew, when that has settled. The extensions Composite and Damage are needed.
class X11DesktopPicture {
public:
    static bool isPossible(X11Connection& connection);

    /// `changed` is called when `icons` or `isUnderstood` may be another.
    X11DesktopPicture(X11Connection& connection,
        xcb_window_t window,
        const QRect& frame,
        std::function<void()> changed);
    ~X11DesktopPicture();
    X11DesktopPicture(const X11DesktopPicture&) = delete;
    X11DesktopPicture& operator=(const X11DesktopPicture&) = delete;

    const QRect& frame() const { return m_frame; }
    /// What is on the backdrop, in root coordinates.
    const QRegion& icons() const { return m_icons; }
    /// Whether the backdrop is known. It is taken to be, until the window was read.
    bool isUnderstood() const { return m_isUnderstood; }

    /// Reads all of it again.
    void noteNewBackdrop();

private:
    struct RootPixmap {};
    struct Colour {
        std::uint32_t value;
    };
    using Backdrop = std::variant<std::monostate, RootPixmap, Colour>;

    void follow();
    void noteDamage(const QRect& area);
    void readDamaged();
    bool readAll(xcb_pixmap_t picture);
    bool readParts(xcb_pixmap_t picture);
    std::optional<std::vector<std::uint32_t>> rootPixels(const QRect& area);
    void compare(const QRect& area,
        const std::vector<std::uint32_t>& pixels,
        const std::vector<std::uint32_t>& backdrop);
    void compare(
        const QRect& area, const std::vector<std::uint32_t>& pixels, std::uint32_t backdrop);

    X11Connection& m_connection;
    xcb_window_t m_window;
    QRect m_frame;
    std::function<void()> m_changed;
    std::uint32_t m_damage;
    std::optional<Disposable> m_damages;
    QRegion m_unread; // in the window
    Backdrop m_backdrop;
    PixelMask m_mask;
    QRegion m_icons;
    bool m_isUnderstood = true;
    Debounce m_settling;
    Debounce m_retrying; // while it is not understood
};
