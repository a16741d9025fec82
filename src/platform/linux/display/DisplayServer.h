#pragma once

#include "platform/Screen.h"
#include "platform/linux/display/NativeWindow.h"
#include "platform/linux/video/FrameOutput.h"

#include <QTimer>

#include <memory>
#include <vector>

/// The display server. There is one, chosen when the program starts; nothing else knows which.
/// To add one: subclass this and `NativeWindow` and `FramePresenter` in a folder beside `x11`, and
/// name it in `DisplayChoice`. Main thread only.
class DisplayServer : public FrameOutput {
    Q_OBJECT

public:
    DisplayServer();
    ~DisplayServer() override;

    /// The one that was made last; ends the program where none has been.
    static DisplayServer& shared();

    virtual std::vector<Screen> screens() const = 0;
    /// Whether it has a tray of its own, beside those on the session bus.
    virtual bool hasTray() { return false; }
    /// Whether it goes on, without windows, when its server has gone, and waits for it to return.
    virtual bool outlivesItsServer() const { return false; }
    /// Connects to the event dispatcher's signals, which somebody has disconnected from all.
    virtual void followDispatcher() {}
    /// Why people may see no wallpaper, as a sentence; empty where they do.
    virtual QString problem() const { return {}; }

    /// Whether the window on a screen of that name is seen, if there is one.
    enum class ScreenState { Unused, Closed, Covered, Shown };
    ScreenState screenState(const QString& name) const;

    /// What a `DesktopWindow` uses. The window on that screen is the one that was given back in
    /// this turn, or else a new one.
    std::unique_ptr<NativeWindow> takeWindow(const Screen& screen, const WindowState& wish);
    void giveBack(std::unique_ptr<NativeWindow> window);
    /// The window is brought into this state at the end of the turn.
    void wish(NativeWindow& window, const WindowState& state);

Q_SIGNALS:
    /// A screen may have come, gone or changed its frame.
    void screensChanged();
    /// Another virtual desktop is shown.
    void activeSpaceChanged();
    /// All windows are covered now, or one of them can be seen again.
    void occlusionChanged();
    void trayMayHaveCome();
    void problemChanged();
    /// It is gone for good, which ends the program.
    void lost();

protected:
    /// Not shown yet.
    virtual std::unique_ptr<NativeWindow> makeWindow(
        const Screen& screen, const WindowState& wish) = 0;
    /// Sends what the windows have committed.
    virtual void flush() = 0;

private:
    void commit();

    struct Wish {
        NativeWindow* window;
        WindowState state;
        bool isOrderedAnew;
    };
    std::vector<Wish> m_wishes; // of this turn
    std::vector<NativeWindow*> m_taken;
    std::vector<std::unique_ptr<NativeWindow>> m_givenBack;
    QTimer m_endOfTurn;
};
