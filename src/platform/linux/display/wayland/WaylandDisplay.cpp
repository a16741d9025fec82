#include "platform/linux/display/wayland/WaylandDisplay.h"

#include "platform/linux/display/wayland/OtherWallpapers.h"
#include "platform/linux/display/wayland/WaylandCpuPresenter.h"

#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds attemptInterval = 500ms;
constexpr std::chrono::milliseconds longestInterval = 8s;
constexpr std::chrono::milliseconds shortestGoodConnection = 2s;
/// The main thread waits for the answers.
constexpr auto shortPatience = 100ms;
/// Looking for other wallpapers: they start with the session, and people end them when told to.
constexpr auto often = 3s;
constexpr auto rarely = 64s;
/// Compositors pause for a moment when outputs change.
constexpr auto seeingSettles = 1s;

} // namespace

WaylandDisplay::WaylandDisplay(std::unique_ptr<WaylandConnection> connection)
    : m_seeing(seeingSettles, [this] { tellSeeing(); })
{
    connect(&holds(), &Holds::changed, this, [this] {
        if (holds().has(Holds::Reason::Unseen))
            m_seeing.call();
        else
            tellSeeing(); // people wait for it
    });
    m_nextAttempt.setInterval(attemptInterval);
    connect(&m_nextAttempt, &QTimer::timeout, this, &WaylandDisplay::connectAgain);
    m_lookForOthers.setSingleShot(true);
    connect(&m_lookForOthers, &QTimer::timeout, this, [this] {
        const auto former = problem();
        m_otherWallpaper = OtherWallpapers::running();
        m_hidesIcons =
            m_connection && m_connection->isPlasma() && OtherWallpapers::isPlasmaRunning();
        if (problem() != former)
            Q_EMIT problemChanged();
        m_lookForOthers.start(m_otherWallpaper.isEmpty() ? rarely : often);
    });
    take(std::move(connection));
}

WaylandDisplay::~WaylandDisplay() = default;

void WaylandDisplay::take(std::unique_ptr<WaylandConnection> connection)
{
    m_connection = std::move(connection);
    m_connectedTime.start();
    connect(
        m_connection.get(), &WaylandConnection::outputsChanged, this, &WaylandDisplay::readOutputs);
    connect(m_connection.get(), &WaylandConnection::lost, this, &WaylandDisplay::lose);
    connect(m_connection.get(), &WaylandConnection::seatsCame, this, &WaylandDisplay::takeSeats);
    connect(m_connection.get(), &WaylandConnection::seatGone, this, [this](quint32 name) {
        m_inputs.erase(name);
    });
    takeSeats();
    readOutputs();
    m_otherWallpaper.clear();
    m_hidesIcons = false;
    m_lookForOthers.start(often);
}

void WaylandDisplay::tellSeeing()
{
    m_seeing.cancel();
    const bool isUnseen = holds().has(Holds::Reason::Unseen);
    if (std::exchange(m_isUnseen, isUnseen) != isUnseen)
        Q_EMIT occlusionChanged();
}

void WaylandDisplay::takeSeats()
{
    for (auto& [name, seat] : m_connection->takeNewSeats())
        m_inputs[name] = std::make_unique<WaylandInput>(*m_connection,
            std::move(seat),
            [this](const wl_surface* surface) { return windowOf(surface); });
}

QString WaylandDisplay::problem() const
{
    if (!m_connection)
        return u"The Wayland compositor has closed the connection; waiting for it."_s;
    if (m_hidesIcons)
        return u"The desktop's icons are behind the video: Plasma draws them into its own picture."_s;
    return m_otherWallpaper.isEmpty()
               ? QString()
               : u"%1 runs as well, and what it shows may lie in front of the wallpaper."_s.arg(
                     m_otherWallpaper);
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
    lost.release()->deleteLater(); // it is in the middle of saying so
    // One that is lost as soon as it is there is not asked for again and again.
    const bool wasGood = m_connectedTime.hasExpired(shortestGoodConnection.count());
    m_nextAttempt.start(wasGood
                            ? attemptInterval
                            : std::min(2 * m_nextAttempt.intervalAsDuration(), longestInterval));
    Q_EMIT problemChanged();
}

void WaylandDisplay::connectAgain()
{
    auto connection = WaylandConnection::open(shortPatience).connection;
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

/// The one of that name in that place, else in that place (after a restart of the compositor names
/// may be others, and outputs may change places), else of that name (it has another mode).
const WaylandOutput* WaylandDisplay::outputFor(const Screen& screen) const
{
    const WaylandOutput* placed = nullptr;
    const WaylandOutput* named = nullptr;
    for (const auto& output : m_connection->outputs()) {
        if (!output->isKnown())
            continue;
        const auto candidate = output->screen();
        if (candidate == screen)
            return output.get();
        if (candidate.frame == screen.frame)
            placed = output.get();
        if (candidate.name == screen.name)
            named = output.get();
    }
    return placed ? placed : named;
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

QString WaylandDisplay::rendererName() const
{
    return canPresent() ? u"CPU, Wayland"_s : QString();
}

void WaylandDisplay::flush()
{
    if (m_connection)
        m_connection->flush();
}
