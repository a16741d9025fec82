#pragma once

#include "base/Debounce.h"
#include "platform/linux/display/DisplayServer.h"
#include "platform/linux/display/wayland/WaylandConnection.h"
#include "platform/linux/display/wayland/WaylandInput.h"
#include "platform/linux/display/wayland/WaylandWindow.h"

#include <QElapsedTimer>
#include <QTimer>

#include <map>
#include <memory>
#include <vector>

/// A Wayland compositor with layer shell (wlroots' ones, KWin). When it goes away, the windows
/// stay without surfaces, and get new ones when it is there again.
class WaylandDisplay : public DisplayServer {
public:
    explicit WaylandDisplay(std::unique_ptr<WaylandConnection> connection);
    ~WaylandDisplay() override;

    std::vector<Screen> screens() const override { return m_screens; }
    bool outlivesItsServer() const override { return true; }
    void followDispatcher() override;
    QString problem() const override;
    bool canPresent() const override { return m_connection != nullptr; }
    std::unique_ptr<FramePresenter> makePresenter() override;
    QString rendererName() const override;

protected:
    std::unique_ptr<NativeWindow> makeWindow(
        const Screen& screen, const WindowState& wish) override;
    void flush() override;

private:
    void take(std::unique_ptr<WaylandConnection> connection);
    void lose();
    void connectAgain();
    void takeSeats();
    void tellSeeing();
    void readOutputs();
    void placeWindows();
    const WaylandOutput* outputFor(const Screen& screen) const;
    WaylandWindow* windowOf(const wl_surface* surface) const;

    std::unique_ptr<WaylandConnection> m_connection; // null while the compositor is away
    std::map<std::uint32_t, std::unique_ptr<WaylandInput>> m_inputs; // by their seats' names
    std::vector<Screen> m_screens; // those of the latest connection
    std::vector<WaylandWindow*> m_windows;
    bool m_isUnseen = false; // as it was told
    Debounce m_seeing;
    QElapsedTimer m_connectedTime;
    QTimer m_nextAttempt;
    QTimer m_lookForOthers;
    QString m_otherWallpaper;
    bool m_hidesIcons = false; // Plasma's
};
