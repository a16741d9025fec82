#include "platform/linux/display/wayland/WaylandConnection.h"

#include <QAbstractEventDispatcher>
#include <QDeadlineTimer>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <poll.h>
#include <string_view>
#include <utility>

using namespace std::chrono_literals;

namespace {

template <typename Type>
void bindTo(WaylandHandle<Type>& handle,
    wl_registry* registry,
    std::uint32_t name,
    const wl_interface& interface,
    std::uint32_t version)
{
    handle.reset(static_cast<Type*>(wl_registry_bind(registry, name, &interface, version)));
}

bool isReadable(int descriptor, int milliseconds)
{
    pollfd one{descriptor, POLLIN, 0};
    int ready = 0;
    do
        ready = poll(&one, 1, milliseconds);
    while (ready < 0 && errno == EINTR);
    return ready > 0;
}

/// Without the variable libwayland would take another session's compositor.
WaylandHandle<wl_display> connectToCompositor()
{
    return WaylandHandle<wl_display>(
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ? nullptr : wl_display_connect(nullptr));
}

/// A round trip that does not wait for ever.
bool waitForAnswer(wl_display& display, std::chrono::milliseconds patience)
{
    bool isAnswered = false;
    static constexpr wl_callback_listener listener{
        [](void* answered, wl_callback* /*callback*/, std::uint32_t /*serial*/) {
            *static_cast<bool*>(answered) = true;
        },
    };
    const WaylandHandle<wl_callback> callback(wl_display_sync(&display));
    wl_callback_add_listener(callback.get(), &listener, &isAnswered);
    const QDeadlineTimer deadline(patience);
    while (!isAnswered) {
        while (wl_display_prepare_read(&display) != 0) {
            if (wl_display_dispatch_pending(&display) < 0)
                return false;
        }
        wl_display_flush(&display);
        const auto left = static_cast<int>(deadline.remainingTime());
        if (left <= 0 || !isReadable(wl_display_get_fd(&display), left)) {
            wl_display_cancel_read(&display);
            return false;
        }
        if (wl_display_read_events(&display) < 0 || wl_display_dispatch_pending(&display) < 0)
            return false;
    }
    return true;
}

} // namespace

const wl_registry_listener WaylandConnection::registryListener{
    [](void* self,
        wl_registry* /*registry*/,
        std::uint32_t name,
        const char* interface,
        std::uint32_t version) {
        static_cast<WaylandConnection*>(self)->bind(name, interface, version);
    },
    [](void* self, wl_registry* /*registry*/, std::uint32_t name) {
        static_cast<WaylandConnection*>(self)->remove(name);
    },
};

class WaylandConnection::RetiredSurface {
public:
    RetiredSurface(WaylandConnection& connection, WaylandHandle<wl_surface> surface)
        : m_connection(connection),
          m_surface(std::move(surface)),
          m_answer(wl_display_sync(connection.display()))
    {
        static constexpr wl_callback_listener listener{
            [](void* self, wl_callback* /*callback*/, std::uint32_t /*serial*/) {
                auto& retired = static_cast<RetiredSurface*>(self)->m_connection.m_retired;
                std::erase_if(retired, [self](const auto& one) { return one.get() == self; });
            },
        };
        wl_callback_add_listener(m_answer.get(), &listener, this);
    }

private:
    WaylandConnection& m_connection;
    WaylandHandle<wl_surface> m_surface;
    WaylandHandle<wl_callback> m_answer;
};

void WaylandConnection::retire(WaylandHandle<wl_surface> surface)
{
    m_retired.push_back(std::make_unique<RetiredSurface>(*this, std::move(surface)));
}

WaylandConnection::Attempt WaylandConnection::open(std::chrono::milliseconds patience)
{
    auto display = connectToCompositor();
    if (!display)
        return {Outcome::NoCompositor, nullptr};
    auto connection = std::make_unique<WaylandConnection>(std::move(display));
    const auto outcome = connection->askWhatThereIs(patience);
    if (outcome != Outcome::Connected)
        return {outcome, nullptr};
    connection->startReading();
    return {outcome, std::move(connection)};
}

bool WaylandConnection::isThere()
{
    const auto display = connectToCompositor();
    return display && waitForAnswer(*display, 1s);
}

WaylandConnection::WaylandConnection(WaylandHandle<wl_display> display)
    : m_display(std::move(display)),
      m_notifier(wl_display_get_fd(m_display.get()), QSocketNotifier::Read)
{
    m_notifier.setEnabled(false);
}

WaylandConnection::~WaylandConnection()
{
    m_notifier.setEnabled(false); // before the descriptor is closed
}

WaylandConnection::Outcome WaylandConnection::askWhatThereIs(std::chrono::milliseconds patience)
{
    m_registry.reset(wl_display_get_registry(m_display.get()));
    wl_registry_add_listener(m_registry.get(), &registryListener, this);
    // The first answer is what there is, the second one what it is like.
    if (!waitForAnswer(*m_display, patience))
        return Outcome::NoCompositor;
    for (const auto& output : m_outputs)
        output->askForLogicalFrame(m_logicalOutputs.get());
    if (!waitForAnswer(*m_display, patience))
        return Outcome::NoCompositor;
    const bool isUsable = m_compositor && m_shm && m_layerShell;
    return isUsable ? Outcome::Connected : Outcome::NoLayerShell;
}

void WaylandConnection::bind(std::uint32_t name, const char* interface, std::uint32_t version)
{
    const std::string_view offered = interface;
    auto* const registry = m_registry.get();
    const auto take = [&](auto& handle, const wl_interface& known, std::uint32_t newest) {
        // Once: the render thread may be using what there is.
        if (offered == known.name && !handle)
            bindTo(handle, registry, name, known, std::min(version, newest));
    };
    take(m_compositor, wl_compositor_interface, 4);
    take(m_shm, wl_shm_interface, 1);
    take(m_layerShell, zwlr_layer_shell_v1_interface, 4);
    take(m_viewporter, wp_viewporter_interface, 1);
    take(m_fractions, wp_fractional_scale_manager_v1_interface, 1);
    take(m_logicalOutputs, zxdg_output_manager_v1_interface, 3);
    m_isPlasma = m_isPlasma || offered == "org_kde_plasma_shell";
    if (offered == wl_seat_interface.name) {
        m_newSeats.push_back({name, version});
        Q_EMIT seatsCame();
    }
    if (offered == wl_output_interface.name) {
        WaylandHandle<wl_output> output;
        take(output, wl_output_interface, 4);
        auto& added = m_outputs.emplace_back(std::make_unique<WaylandOutput>(
            std::move(output), name, [this] { Q_EMIT outputsChanged(); }));
        added->askForLogicalFrame(m_logicalOutputs.get());
    }
}

std::vector<WaylandConnection::Seat> WaylandConnection::takeNewSeats()
{
    constexpr std::uint32_t newest = 5;
    std::vector<Seat> seats;
    for (const auto& [name, version] : std::exchange(m_newSeats, {}))
        bindTo(seats.emplace_back(Seat{name, nullptr}).proxy,
            m_registry.get(),
            name,
            wl_seat_interface,
            std::min(version, newest));
    return seats;
}

void WaylandConnection::remove(std::uint32_t name)
{
    const auto count = std::erase_if(
        m_outputs, [name](const auto& output) { return output->globalName() == name; });
    if (count > 0)
        Q_EMIT outputsChanged();
    Q_EMIT seatGone(name); // if it was one
}

void WaylandConnection::startReading()
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &WaylandConnection::read);
    m_notifier.setEnabled(true);
    followDispatcher();
}

void WaylandConnection::followDispatcher()
{
    // The render thread may have read events of ours into our queue.
    connect(QAbstractEventDispatcher::instance(),
        &QAbstractEventDispatcher::aboutToBlock,
        this,
        &WaylandConnection::dispatch);
}

void WaylandConnection::read()
{
    while (wl_display_prepare_read(m_display.get()) != 0) {
        if (wl_display_dispatch_pending(m_display.get()) < 0) {
            checkForLoss();
            return;
        }
    }
    // The render thread may have been faster; whoever reads waits for all that are about to.
    if (isReadable(wl_display_get_fd(m_display.get()), 0))
        wl_display_read_events(m_display.get());
    else
        wl_display_cancel_read(m_display.get());
    dispatch();
}

void WaylandConnection::dispatch()
{
    if (m_isLost)
        return;
    wl_display_dispatch_pending(m_display.get());
    flush();
}

void WaylandConnection::flush()
{
    wl_display_flush(m_display.get());
    checkForLoss();
}

void WaylandConnection::checkForLoss()
{
    if (wl_display_get_error(m_display.get()) == 0 || std::exchange(m_isLost, true))
        return;
    m_notifier.setEnabled(false);
    // Not at once: whoever asked us to flush may be in the middle of something.
    QMetaObject::invokeMethod(this, &WaylandConnection::lost, Qt::QueuedConnection);
}
