#include "platform/linux/display/x11/X11DesktopPicture.h"

#include "platform/linux/display/x11/X11PixelReader.h"

#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <chrono>
#include <unordered_map>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto quiet = 100ms;    // after the last change
constexpr auto patience = 400ms; // after the first, when there is no end to them

/// While the backdrop is not known.
constexpr std::chrono::milliseconds firstRetry = 500ms;
constexpr std::chrono::milliseconds lastRetry = 64s;

/// Icons and their names take less; a wrong backdrop differs nearly everywhere.
constexpr double mostOfIcons = 0.1;
/// On one that is known, a rubber band may be large.
constexpr double mostOfSelection = 0.5;
constexpr std::size_t mostRectangles = 2000;

constexpr std::uint32_t colours = 0xffffff;

std::uint32_t mostFrequent(const std::vector<std::uint32_t>& pixels)
{
    // One in some is enough to know it, and a photograph has very many.
    constexpr std::size_t step = 17;
    std::unordered_map<std::uint32_t, int> counts;
    for (std::size_t i = 0; i < pixels.size(); i += step)
        ++counts[pixels[i] & colours];
    return std::ranges::max_element(counts, {}, [](const auto& entry) {
        return entry.second;
    })->first;
}

} // namespace

bool X11DesktopPicture::isPossible(X11Connection& connection)
{
    auto* const x11 = connection.get();
    if (!hasExtension(x11, xcb_composite_id) || !hasExtension(x11, xcb_damage_id) ||
        !hasExtension(x11, xcb_xfixes_id))
        return false;
    // Each wants to be asked first; pixmaps can be named from 0.2 on.
    const auto composite = own(
        xcb_composite_query_version_reply(x11, xcb_composite_query_version(x11, 0, 4), nullptr));
    const auto damage =
        own(xcb_damage_query_version_reply(x11, xcb_damage_query_version(x11, 1, 1), nullptr));
    const auto fixes =
        own(xcb_xfixes_query_version_reply(x11, xcb_xfixes_query_version(x11, 2, 0), nullptr));
    return composite && damage && fixes &&
           (composite->major_version > 0 || composite->minor_version >= 2);
}

X11DesktopPicture::X11DesktopPicture(
    X11Connection& connection, const X11ForeignDesktop& desktop, std::function<void()> changed)
    : m_connection(connection),
      m_desktop(desktop),
      m_changed(std::move(changed)),
      m_damage(xcb_generate_id(connection.get())),
      m_mask(desktop.frame.size()),
      m_settling(
          quiet, [this] { readDamaged(); }, patience)
{
    m_retry.setSingleShot(true);
    m_retry.callOnTimeout([this] { readDamaged(); });
    follow();
    noteNewBackdrop();
}

X11DesktopPicture::~X11DesktopPicture()
{
    auto* const x11 = m_connection.get();
    xcb_damage_destroy(x11, m_damage);
    xcb_composite_unredirect_window(x11, m_desktop.window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    xcb_flush(x11);
}

/// Redirected, the window draws into memory of its own, whatever covers it.
void X11DesktopPicture::follow()
{
    auto* const x11 = m_connection.get();
    xcb_composite_redirect_window(x11, m_desktop.window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    xcb_damage_create(x11, m_damage, m_desktop.window, XCB_DAMAGE_REPORT_LEVEL_DELTA_RECTANGLES);
    const auto* extension = xcb_get_extension_data(x11, &xcb_damage_id);
    m_damages = m_connection.watchKind(
        static_cast<std::uint8_t>(extension->first_event + XCB_DAMAGE_NOTIFY),
        [this](const xcb_generic_event_t& event) {
            const auto& notice = reinterpret_cast<const xcb_damage_notify_event_t&>(event);
            const auto& area = notice.area;
            if (notice.damage == m_damage)
                noteDamage({area.x, area.y, area.width, area.height});
        });
    xcb_flush(x11);
}

void X11DesktopPicture::noteNewBackdrop()
{
    m_backdrop = {};
    m_retry.setInterval(firstRetry);
    m_isReadingDue = m_isPaused;
    if (!m_isPaused)
        m_settling.call();
}

void X11DesktopPicture::setIsPaused(bool isPaused)
{
    m_isPaused = isPaused;
    if (isPaused) {
        m_isReadingDue = m_isReadingDue || m_settling.isPending() || m_retry.isActive();
        m_settling.cancel();
        m_retry.stop();
    } else if (std::exchange(m_isReadingDue, false)) {
        readSoon();
    }
}

void X11DesktopPicture::readSoon()
{
    if (m_isPaused)
        m_isReadingDue = true;
    else if (m_isUnderstood)
        m_settling.call();
    else if (!m_retry.isActive())
        m_retry.start();
}

/// The server tells of each place once, until we have read.
void X11DesktopPicture::noteDamage(const QRect& area)
{
    m_unread += area & QRect(QPoint(), m_desktop.frame.size());
    constexpr int mostParts = 16;
    if (m_unread.rectCount() > mostParts)
        m_unread = m_unread.boundingRect();
    readSoon();
}

void X11DesktopPicture::readDamaged()
{
    auto* const x11 = m_connection.get();
    m_settling.cancel();
    m_retry.stop();
    // First, so that what is drawn while we read is told of again.
    xcb_damage_subtract(x11, m_damage, XCB_NONE, XCB_NONE);
    // A window that has another size by now has another pixmap.
    const auto picture = xcb_generate_id(x11);
    xcb_composite_name_window_pixmap(x11, m_desktop.window, picture);
    const bool wasKnown = !std::holds_alternative<std::monostate>(m_backdrop);
    m_isUnderstood = wasKnown ? readParts(picture) : readAll(picture);
    xcb_free_pixmap(x11, picture);
    m_unread = {};
    if (!m_isUnderstood) {
        m_backdrop = {};
        m_retry.setInterval(
            wasKnown ? firstRetry : std::min(2 * m_retry.intervalAsDuration(), lastRetry));
        if (wasKnown)
            readSoon(); // it may be another one now
    }
    m_icons = m_isUnderstood ? m_mask.region(mostRectangles).translated(m_desktop.frame.topLeft())
                             : QRegion();
    m_changed();
}

/// The backdrop is transparent, or the root window's, or else one colour.
bool X11DesktopPicture::readAll(xcb_pixmap_t picture)
{
    const QRect all(QPoint(), m_desktop.frame.size());
    const auto pixels = X11PixelReader::read(m_connection, picture, all);
    if (!pixels)
        return false;
    const auto tryWith = [&](const Backdrop& backdrop) {
        m_backdrop = backdrop;
        return compare(all, *pixels) && m_mask.share() <= mostOfIcons;
    };
    if (m_desktop.isTransparent)
        return tryWith(Transparency{});
    return tryWith(RootPixmap{}) || tryWith(Colour{mostFrequent(*pixels)});
}

bool X11DesktopPicture::readParts(xcb_pixmap_t picture)
{
    return std::ranges::all_of(m_unread, [&](const QRect& part) {
        const auto pixels = X11PixelReader::read(m_connection, picture, part);
        return pixels && compare(part, *pixels);
    }) && m_mask.share() <= mostOfSelection;
}

/// False where the backdrop cannot be read.
bool X11DesktopPicture::compare(const QRect& area, const Pixels& pixels)
{
    if (const auto* colour = std::get_if<Colour>(&m_backdrop)) {
        mark(area, [&](std::size_t i) { return ((pixels[i] ^ colour->value) & colours) != 0; });
        return true;
    }
    if (std::holds_alternative<Transparency>(m_backdrop)) {
        // Less is a shadow, through which the desktop's own picture would be seen.
        constexpr std::uint32_t leastAlpha = 0x60000000;
        mark(area, [&](std::size_t i) { return pixels[i] >= leastAlpha; });
        return true;
    }
    const auto root = rootPixels(area);
    if (root)
        mark(area, [&](std::size_t i) { return ((pixels[i] ^ (*root)[i]) & colours) != 0; });
    return root.has_value();
}

template <typename IsIcon>
void X11DesktopPicture::mark(const QRect& area, IsIcon isIcon)
{
    std::size_t i = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            m_mask.set(x, y, isIcon(i++));
    }
}

/// Of the pixmap that desktop programs name so that others can look transparent.
std::optional<X11DesktopPicture::Pixels> X11DesktopPicture::rootPixels(const QRect& area)
{
    const auto named = m_connection.property(
        m_connection.root(), m_connection.atom("_XROOTPMAP_ID"), XCB_ATOM_PIXMAP);
    if (named.empty())
        return std::nullopt;
    return X11PixelReader::read(
        m_connection, named.front(), area.translated(m_desktop.frame.topLeft()));
}
