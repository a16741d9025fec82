#pragma once

#include "platform/linux/display/DisplayServer.h"

/// A display on which there is no way to show a wallpaper. The rest of the program goes on: the
/// menu, the preferences, the heartbeat. Nothing is decoded.
class UnusableDisplay : public DisplayServer {
public:
    /// `problem` is a sentence.
    explicit UnusableDisplay(QString problem);

    std::vector<Screen> screens() const override;
    QString problem() const override { return m_problem; }
    bool canPresent() const override { return false; }
    std::unique_ptr<FramePresenter> makePresenter() override { return nullptr; }
    QString rendererName() const override { return {}; }

protected:
    std::unique_ptr<NativeWindow> makeWindow(
        const Screen& screen, const WindowState& wish) override;
    void flush() override {}

private:
    QString m_problem;
};
