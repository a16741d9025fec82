#pragma once

#include "base/Disposable.h"
#include "platform/linux/display/NativeWindow.h"
#include "platform/linux/display/x11/X11Connection.h"
#include "platform/linux/display/x11/X11DesktopIcons.h"
#include "platform/linux/display/x11/X11DesktopPresses.h"
#include "platform/linux/display/x11/X11ForeignDesktops.h"
#include "platform/linux/display/x11/X11Occlusion.h"
#include "platform/linux/display/x11/X11Placements.h"
#include "platform/linux/display/x11/X11Surface.h"
#include "platform/linux/display/x11/X11WindowManager.h"

#include <QRegion>
#include <QTimer>

#include <memory>
#include <optional>

/// What all windows share.
struct X11DesktopServices {
    X11Connection& connection;
    X11WindowManager& windowManager;
    X11ForeignDesktops& desktops;
    X11Placements& placements;
    X11DesktopPresses& presses;
    X11DesktopIcons& icons;
    X11Occlusion& occlusion;
};

/// A desktop window on X11. Where the window manager knows the type desktop it is of that type, or
/// stands in front of another program's window of that type, as `X11Placements` decides. Else it
/// bypasses the window manager and is kept at the bottom.
class X11DesktopWindow : public NativeWindow {
public:
    X11DesktopWindow(
        const X11DesktopServices& services, const Screen& screen, const WindowState& wish);
    ~X11DesktopWindow() override;

    void commit(const WindowState& wish, bool isOrderedAnew) override;
    FrameTarget target(const QRect& viewFrame) const override;
    bool isShown() const override { return m_isMapped; }
    bool isCovered() const override { return m_isMapped && (!m_shown || m_isCovered); }

private:
    void create();
    void listen();
    void handle(const xcb_generic_event_t& event);
    void handleForViews(const xcb_generic_event_t& event);
    const X11ForeignDesktop* desktopBelow(const QPoint& point) const;
    void moveTo(const QRect& frame);
    void showOrHide(bool isOrderedAnew);
    void showAgain();
    void followPlacement();
    void map();
    void unmap();
    void noteShown();
    void letInputThrough();
    void shape();
    void restack(StackingOrder order);

    X11DesktopServices m_services;
    X11Connection& m_connection;
    xcb_window_t m_window = XCB_NONE;
    std::shared_ptr<X11Surface> m_surface;
    WindowState m_committed;
    bool m_isMapped = false;                   // as far as we asked for it
    bool m_isManaged = false;                  // as it was last mapped
    Placement m_placement = Placement::Behind; // as it was last mapped
    bool m_isInputShaped = false;
    QRegion m_shape;                       // of the window, empty where it has none
    QTimer m_withdrawal;                   // until the window may be mapped again
    bool m_isCovered = false;              // while it is shown
    std::optional<Disposable> m_shown;     // while the server shows it
    std::optional<Disposable> m_listening; // while input goes through it
    std::optional<Disposable> m_following; // while icons are to be seen through it
    std::optional<Disposable> m_events;
    std::optional<Disposable> m_managerChanges;
    std::optional<Disposable> m_placementChanges;
    std::optional<Disposable> m_iconChanges;
    std::optional<Disposable> m_presses;
    std::optional<Disposable> m_releases;
};
