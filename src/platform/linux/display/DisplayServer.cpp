#include "platform/linux/display/DisplayServer.h"

#include <algorithm>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

DisplayServer::DisplayServer()
{
    m_endOfTurn.setSingleShot(true);
    m_endOfTurn.setInterval(0ms);
    connect(&m_endOfTurn, &QTimer::timeout, this, &DisplayServer::commit);
}

DisplayServer::~DisplayServer() = default;

DisplayServer& DisplayServer::shared()
{
    return dynamic_cast<DisplayServer&>(FrameOutput::shared());
}

std::unique_ptr<NativeWindow> DisplayServer::takeWindow(
    const Screen& screen, const WindowState& wish)
{
    const auto entry = std::ranges::find_if(
        m_givenBack, [&](const auto& window) { return window->screen().name == screen.name; });
    std::unique_ptr<NativeWindow> window;
    if (entry == m_givenBack.end()) {
        window = makeWindow(screen, wish);
    } else {
        window = std::move(*entry);
        m_givenBack.erase(entry);
    }
    m_taken.push_back(window.get());
    return window;
}

DisplayServer::ScreenState DisplayServer::screenState(const QString& name) const
{
    const auto taken = std::ranges::find_if(
        m_taken, [&](const auto* window) { return window->screen().name == name; });
    if (taken == m_taken.end())
        return ScreenState::Unused;
    if (!(*taken)->isShown())
        return ScreenState::Closed;
    return (*taken)->isCovered() ? ScreenState::Covered : ScreenState::Shown;
}

void DisplayServer::giveBack(std::unique_ptr<NativeWindow> window)
{
    std::erase(m_taken, window.get());
    window->setViews(nullptr);
    window->setTargetHandler({});
    std::erase_if(m_wishes, [&](const Wish& wish) { return wish.window == window.get(); });
    m_givenBack.push_back(std::move(window));
    m_endOfTurn.start();
}

void DisplayServer::wish(NativeWindow& window, const WindowState& state)
{
    auto entry = std::ranges::find(m_wishes, &window, &Wish::window);
    if (entry == m_wishes.end())
        entry = m_wishes.insert(entry, {&window, {}, false});
    entry->state = state;
    entry->isOrderedAnew = state.order.has_value();
    m_endOfTurn.start();
}

void DisplayServer::commit()
{
    for (const auto& [window, state, isOrderedAnew] : std::exchange(m_wishes, {}))
        window->commit(state, isOrderedAnew);
    m_givenBack.clear();
    flush();
    Q_EMIT statusChanged();
}
