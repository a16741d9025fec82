#pragma once

#include "base/Disposable.h"
#include "platform/linux/display/NativeWindow.h"
#include "platform/linux/display/x11/X11Connection.h"
#include "platform/linux/display/x11/X11Occlusion.h"
#include "platform/linux/display/x11/X11Surface.h"
#include "platform/linux/display/x11/X11WindowManager.h"

#include <memory>
#include <optional>

/// A desktop window on X11: managed as a window of type desktop where the window manager knows
/// that type, else one that bypasses the window manager and is kept at the bottom.
class X11DesktopWindow : public NativeWindow {
public:
    X11DesktopWindow(X11Connection& connection,
        X11WindowManager& windowManager,
        X11Occlusion& occlusion,
        const Screen& screen,
        const WindowState& wish);
    ~X11DesktopWindow() override;

    void commit(const WindowState& wish, bool isOrderedAnew) override;
    FrameTarget target(const QRect& viewFrame) const override;
    bool isShown() const override { return m_isMapped; }
    bool isCovered() const override { return m_isCovered; }

private:
    void create();
    void describe();
    void describeFrame();
    void listen();
    void handle(const xcb_generic_event_t& event);
    void passToRoot(const xcb_button_press_event_t& button);
    void moveTo(const QRect& frame);
    void showOrHide(bool isOrderedAnew);
    void map();
    void unmap();
    void describeBehavior();
    void restack(StackingOrder order);

    X11Connection& m_connection;
    X11WindowManager& m_windowManager;
    X11Occlusion& m_occlusion;
    xcb_window_t m_window = XCB_NONE;
    std::shared_ptr<X11Surface> m_surface;
    WindowState m_committed;
    bool m_isMapped = false;
    bool m_isCovered = false;
    bool m_isManaged = false;          // as it was last mapped
    std::optional<Disposable> m_shown; // while mapped
    std::optional<Disposable> m_events;
    std::optional<Disposable> m_managerChanges;
};
