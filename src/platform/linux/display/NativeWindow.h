#pragma once

#include "platform/DesktopWindow.h"
#include "platform/common/window/WindowViews.h"
#include "platform/linux/video/FrameTarget.h"

#include <functional>
#include <optional>

enum class StackingOrder { Back, Front };

/// What a window shall be like.
struct WindowState {
    QRect frame;                        ///< in desktop units
    std::optional<StackingOrder> order; ///< none: hidden
    WindowCollectionBehavior behavior{};

    bool operator==(const WindowState&) const = default;
};

/// A window of one display server. It is told what it shall be like, and carries out the difference
/// once, at the end of the main loop's turn (`DisplayServer`). When its owner lets go of it and
/// another one wants a window on the same screen in the same turn, that one gets it as it is,
/// picture and all.
class NativeWindow {
public:
    explicit NativeWindow(Screen screen) : m_screen(std::move(screen)) {}
    virtual ~NativeWindow() = default;
    NativeWindow(const NativeWindow&) = delete;
    NativeWindow& operator=(const NativeWindow&) = delete;

    const Screen& screen() const { return m_screen; }

    /// Called by `DisplayServer` at the end of a turn in which something was asked of some window.
    /// `wish` may be what it was; an order that was asked for once more is to be restored.
    virtual void commit(const WindowState& wish, bool isOrderedAnew) = 0;

    /// Where a view's picture goes; no surface while there is none.
    virtual FrameTarget target(const QRect& viewFrame) const = 0;

    virtual bool isShown() const = 0;
    /// Whether nothing of it can be seen though it is shown, as far as the display tells.
    virtual bool isCovered() const = 0;

    /// Who gets the input; borrowed, null for nobody.
    void setViews(WindowViews* views) { m_views = views; }
    /// Called when `target` gives something else than before.
    void setTargetHandler(std::function<void()> changed) { m_targetChanged = std::move(changed); }

protected:
    WindowViews* views() const { return m_views; }
    void tellTargetChange() const
    {
        if (m_targetChanged)
            m_targetChanged();
    }

private:
    Screen m_screen;
    WindowViews* m_views = nullptr;
    std::function<void()> m_targetChanged;
};
