#pragma once

#include "platform/PlayerLayerView.h"
#include "platform/Screen.h"

#include <functional>
#include <memory>

/// What a window looks like. The values are the bits of a style mask.
enum class WindowStyle : unsigned { Borderless = 0, Miniaturizable = 4 };

enum class WindowBacking : unsigned { Buffered = 2 };

/// How a window takes part in spaces. The values are bits and may be combined.
enum class WindowCollectionBehavior : unsigned {
    CanJoinAllSpaces = 1, ///< is on every space
    Transient = 8,        ///< not in task bars, pagers and overviews
};
constexpr WindowCollectionBehavior operator|(WindowCollectionBehavior a, WindowCollectionBehavior b)
{
    return static_cast<WindowCollectionBehavior>(
        static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
constexpr bool contains(WindowCollectionBehavior all, WindowCollectionBehavior one)
{
    return (static_cast<unsigned>(all) & static_cast<unsigned>(one)) == static_cast<unsigned>(one);
}

/// The layer in which a window is stacked, named by the key under which the system knows it.
enum class WindowLevel : int { DesktopIcon = 18 };

/// A window without decoration that lies on the desktop, below all ordinary windows, and never
/// takes the keyboard. It becomes visible with the first `orderBack()` or `orderFront()`.
///
/// On X11 the window is of type desktop where the window manager knows that type, and bypasses
/// the window manager otherwise; that is decided again when the window manager changes. Other
/// clients' windows and the display's errors never end the process. Main thread only.
class DesktopWindow {
public:
    /// `contentRect` is relative to the frame of `screen`. With `Defer::No` the window exists in
    /// the display when the constructor returns.
    enum class Defer { No, Yes };
    DesktopWindow(const QRect& contentRect,
        WindowStyle style,
        WindowBacking backing,
        Defer defer,
        const Screen& screen);
    ~DesktopWindow();
    DesktopWindow(const DesktopWindow&) = delete;
    DesktopWindow& operator=(const DesktopWindow&) = delete;

    void setCollectionBehavior(WindowCollectionBehavior behavior);
    void setLevel(WindowLevel level);

    void orderBack();  ///< shown, behind everything of its level
    void orderFront(); ///< shown, in front of everything of its level
    void orderOut();   ///< hidden

    /// Runs when the primary button was pressed and released over the window and the view
    /// pressed on let its base class have the press.
    void setClickAction(std::function<void()> action);

    /// Puts the view into the window's content view. The window owns it from now on.
    void addSubview(std::unique_ptr<PlayerLayerView> view);

    class Body;

private:
    std::unique_ptr<Body> m_body;
};
