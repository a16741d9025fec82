#include "platform/linux/display/wayland/WaylandDisplay.h"

#include "platform/linux/display/wayland/OtherWallpapers.h"
#include "platform/linux/display/wayland/WaylandCpuPresenter.h"

#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto attemptInterval = 500ms;

} // namespace

WaylandDisplay::WaylandDisplay(std::unique_ptr<WaylandConnection> connection)
{
    m_nextAttempt.setInterval(attemptInterval);
    connect(&m_nextAttempt, &QTimer::timeout, this, &WaylandDisplay::connectAgain);
    m_lookForOthers.setSingleShot(true);
    m_lookForOthers.setInterval(3s);
    connect(&m_lookForOthers, &QTimer::timeout, this, [this] {
        if (m_other = OtherWallpapers::running(); !m_other.isEmpty())
            Q_EMIT problemChanged();
    });
    take(std::move(connection));
}

WaylandDisplay::~WaylandDisplay() = default;

void WaylandDisplay::take(std::unique_ptr<WaylandConnection> connection)
{
    m_connection = std::move(connection);
    connect(
        m_connection.get(), &WaylandConnection::outputsChanged, this, &WaylandDisplay::readOutputs);
    connect(m_connection.get(), &WaylandConnection::lost, this, &WaylandDisplay::lose);
    connect(m_connection.get(), &WaylandConnection::seatsCame, this, &WaylandDisplay::takeSeats);
    takeSeats();
    readOutputs();
    m_other.clear();
    m_lookForOthers.start();
}

void WaylandDisplay::takeSeats()
{
    for (auto& seat : m_connection->takeNewSeats())
        m_inputs.push_back(std::make_unique<WaylandInput>(*m_connection,
            std::move(seat),
            [this](const wl_surface* surface) { return windowOf(surface); }));
}

QString WaylandDisplay::problem() const
{
    if (!m_connection)
        return u"The Wayland compositor has closed the connection; waiting for it."_s;
    return m_other.isEmpty()
               ? QString()
               : u"%1 runs as well, and what it shows may lie in front of the wallpaper."_s.arg(
                     m_other);
}

void WaylandDisplay::followDispatcher()
{
    if (m_connection)
        m_connection->followDispatcher();
}

void WaylandDisplay::lose()
{
    auto lost = std::exchange(m_connection, nullptr);
    Q_EMIT presentersChanged(); // the render thread lets go of the connection
    for (auto* const window : m_windows)
        window->detach();
    m_inputs.clear();
    lost.reset();
    m_nextAttempt.start();
    Q_EMIT problemChanged();
}

void WaylandDisplay::connectAgain()
{
    auto connection = WaylandConnection::open().connection;
    if (!connection)
        return;
    m_nextAttempt.stop();
    take(std::move(connection));
    Q_EMIT presentersChanged();
    Q_EMIT problemChanged();
}

void WaylandDisplay::readOutputs()
{
    std::vector<Screen> screens;
    for (const auto& output : m_connection->outputs()) {
        if (output->isKnown() && !output->screen().frame.isEmpty())
            screens.push_back(output->screen());
    }
    const bool isChanged = screens != std::exchange(m_screens, screens);
    placeWindows();
    if (isChanged)
        Q_EMIT screensChanged();
}

void WaylandDisplay::placeWindows()
{
    for (auto* const window : m_windows) {
        const auto* const output = outputFor(window->screen());
        if (output == window->output()) {
            window->updateScale();
            continue;
        }
        window->detach();
        window->attach(*m_connection, output);
    }
    m_connection->flush();
}

/// By its name, or after a restart of the compositor by its place.
const WaylandOutput* WaylandDisplay::outputFor(const Screen& screen) const
{
    const auto find = [&](auto isIt) -> const WaylandOutput* {
        const auto& outputs = m_connection->outputs();
        const auto found = std::ranges::find_if(outputs,
            [&](const auto& output) { return output->isKnown() && isIt(output->screen()); });
        return found == outputs.end() ? nullptr : found->get();
    };
    const auto* const named =
        find([&](const Screen& candidate) { return candidate.name == screen.name; });
    return named ? named
                 : find([&](const Screen& candidate) { return candidate.frame == screen.frame; });
}

WaylandWindow* WaylandDisplay::windowOf(const wl_surface* surface) const
{
    const auto found = std::ranges::find_if(
        m_windows, [surface](const auto* window) { return window->isSurface(surface); });
    return found == m_windows.end() ? nullptr : *found;
}

std::unique_ptr<NativeWindow> WaylandDisplay::makeWindow(
    const Screen& screen, const WindowState& /*wish*/)
{
    auto window = std::make_unique<WaylandWindow>(screen);
    m_windows.push_back(window.get());
    window->setListing(
        Disposable([this, listed = window.get()] { std::erase(m_windows, listed); }));
    if (m_connection)
        window->attach(*m_connection, outputFor(screen));
    return window;
}

std::unique_ptr<FramePresenter> WaylandDisplay::makePresenter()
{
    return std::make_unique<WaylandCpuPresenter>(*m_connection->display(), *m_connection->shm());
}

void WaylandDisplay::flush()
{
    if (m_connection)
        m_connection->flush();
}
