#pragma once

#include "base/Debounce.h"
#include "base/Disposable.h"
#include "platform/linux/display/PixelMask.h"
#include "platform/linux/display/x11/X11Connection.h"
#include "platform/linux/display/x11/X11ForeignDesktops.h"

#include <QRect>
#include <QRegion>

#include <QTimer>

#include <functional>
#include <optional>
#include <variant>
#include <vector>

/// What another program draws on its desktop, also where it is covered: all of it is read once, and
/// then what it draws anew, when that has settled. The extensions Composite and Damage are needed.
class X11DesktopPicture {
public:
    static bool isPossible(X11Connection& connection);

    /// `changed` is called when `icons` or `isUnderstood` may be another.
    X11DesktopPicture(
        X11Connection& connection, const X11ForeignDesktop& desktop, std::function<void()> changed);
    ~X11DesktopPicture();
    X11DesktopPicture(const X11DesktopPicture&) = delete;
    X11DesktopPicture& operator=(const X11DesktopPicture&) = delete;

    const X11ForeignDesktop& desktop() const { return m_desktop; }
    /// What is on the backdrop, in root coordinates.
    const QRegion& icons() const { return m_icons; }
    /// Whether the backdrop is known. It is taken to be, until the window was read.
    bool isUnderstood() const { return m_isUnderstood; }

    /// Reads all of it again.
    void noteNewBackdrop();
    /// Reads nothing, until it is wanted again.
    void setIsPaused(bool isPaused);

private:
    using Pixels = std::vector<std::uint32_t>;
    struct RootPixmap {};
    struct Colour {
        std::uint32_t value;
    };
    struct Transparency {};
    using Backdrop = std::variant<std::monostate, RootPixmap, Colour, Transparency>;

    void follow();
    void noteDamage(const QRect& area);
    void readSoon();
    void readDamaged();
    bool readAll(xcb_pixmap_t picture);
    bool readParts(xcb_pixmap_t picture);
    std::optional<Pixels> rootPixels(const QRect& area);
    bool compare(const QRect& area, const Pixels& pixels);
    /// Marks what of the area's pixels is not backdrop, as told for the index of each.
    template <typename IsIcon>
    void mark(const QRect& area, IsIcon isIcon);

    X11Connection& m_connection;
    X11ForeignDesktop m_desktop;
    std::function<void()> m_changed;
    std::uint32_t m_damage;
    std::optional<Disposable> m_damages;
    QRegion m_unread; // in the window
    Backdrop m_backdrop;
    PixelMask m_mask;
    QRegion m_icons;
    bool m_isUnderstood = true;
    bool m_isPaused = false;
    bool m_isReadingDue = false; // when it is not paused any more
    Debounce m_settling;
    QTimer m_retry; // while it is not understood: all has to be read, ever more seldom
};
