#include "platform/linux/display/UnusableDisplay.h"

#include <QGuiApplication>
#include <QScreen>

#include <utility>

namespace {

class NoWindow : public NativeWindow {
public:
    using NativeWindow::NativeWindow;

    void commit(const WindowState& /*wish*/, bool /*isOrderedAnew*/) override {}
    FrameTarget target(const QRect& /*viewFrame*/) const override { return {}; }
    bool isShown() const override { return false; }
    bool isCovered() const override { return false; }
};

} // namespace

UnusableDisplay::UnusableDisplay(QString problem) : m_problem(std::move(problem)) {}

std::vector<Screen> UnusableDisplay::screens() const
{
    std::vector<Screen> screens;
    const auto known = QGuiApplication::screens();
    for (const auto* screen : known)
        screens.push_back({screen->name(), screen->geometry()});
    return screens;
}

std::unique_ptr<NativeWindow> UnusableDisplay::makeWindow(
    const Screen& screen, const WindowState& /*wish*/)
{
    return std::make_unique<NoWindow>(screen);
}
