#pragma once

#include "base/Disposable.h"
#include "platform/linux/display/DisplayServer.h"
#include "platform/linux/display/x11/X11Blanking.h"
#include "platform/linux/display/x11/X11Connection.h"
#include "platform/linux/display/x11/X11Occlusion.h"
#include "platform/linux/display/x11/X11WindowManager.h"

#include <memory>
#include <vector>

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
    X11Occlusion m_occlusion;
    X11Blanking m_blanking;
    bool m_couldPresent = false;
};
