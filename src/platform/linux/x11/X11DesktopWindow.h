#pragma once

#include "base/Disposable.h"
#include "platform/linux/DesktopWindowBody.h"
#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/X11Occlusion.h"
#include "platform/linux/x11/X11WindowManager.h"

#include <QTimer>

#include <optional>

/// A desktop window on X11: managed as a window of type desktop where the window manager knows
/// that type, else one that bypasses the window manager and is kept at the bottom.
class X11DesktopWindow : public DesktopWindow::Body {
public:
    /// `frame` is in root coordinates.
    explicit X11DesktopWindow(const QRect& frame);
    ~X11DesktopWindow() override;

    void setCollectionBehavior(WindowCollectionBehavior behavior) override;
    void setLevel(WindowLevel level) override;
    void show(Order order) override;
    void hide() override;
    std::uint32_t identifier() const override { return m_window; }

private:
    void create(const QRect& frame);
    void describe(const QRect& frame);
    void listen();
    void handle(const xcb_generic_event_t& event);
    void passToRoot(const xcb_button_press_event_t& button);
    void applyChange();
    void map();
    void unmap();
    void describeBehavior();
    void restack(Order order);
    template <typename Value>
    void setProperty(const std::string& name, xcb_atom_t type, const std::vector<Value>& values);
    void setProperty(const std::string& name, xcb_atom_t type, const std::string& text);

    X11Connection& m_connection;
    X11WindowManager& m_windowManager;
    X11Occlusion& m_occlusion;
    xcb_window_t m_window = XCB_NONE;
    WindowCollectionBehavior m_behavior{};
    std::optional<Order> m_wantedOrder; // none to be hidden
    QTimer m_change;                    // from the first wish of a turn to its end
    bool m_isMapped = false;
    bool m_isManaged = false;          // as it was last mapped
    std::optional<Disposable> m_shown; // while mapped
    std::optional<Disposable> m_events;
    std::optional<Disposable> m_managerChanges;
};
