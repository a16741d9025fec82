#pragma once

#include "platform/linux/display/DisplayServer.h"
#include "platform/linux/display/x11/X11Blanking.h"
#include "platform/linux/display/x11/X11Connection.h"
#include "platform/linux/display/x11/X11DesktopIcons.h"
#include "platform/linux/display/x11/X11DesktopPresses.h"
#include "platform/linux/display/x11/X11ForeignDesktops.h"
#include "platform/linux/display/x11/X11Occlusion.h"
#include "platform/linux/display/x11/X11Placements.h"
#include "platform/linux/display/x11/X11WindowManager.h"

/// An X server, with the window manager that runs on it.
class X11Display : public DisplayServer {
public:
    /// Null where DISPLAY names none that answers.
    static std::unique_ptr<X11Display> open();

    explicit X11Display(std::unique_ptr<X11Connection> connection);

    std::vector<Screen> screens() const override;
    bool hasTray() override;
    QString problem() const override;
    bool canPresent() const override;
    std::unique_ptr<FramePresenter> makePresenter() override;
    QString rendererName() const override;

protected:
    std::unique_ptr<NativeWindow> makeWindow(
        const Screen& screen, const WindowState& wish) override;
    void flush() override;

private:
    bool isImpossible() const;

    std::unique_ptr<X11Connection> m_connection;
    X11WindowManager m_windowManager;
    X11ForeignDesktops m_foreignDesktops;
    X11Placements m_placements;
    X11DesktopPresses m_presses;
    X11DesktopIcons m_icons;
    X11Occlusion m_occlusion;
    X11Blanking m_blanking;
    bool m_couldPresent = false;
};
