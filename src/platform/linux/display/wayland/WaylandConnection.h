#pragma once

#include "platform/linux/display/wayland/WaylandHandles.h"
#include "platform/linux/display/wayland/WaylandOutput.h"

#include <QObject>
#include <QSocketNotifier>

#include <chrono>
#include <memory>
#include <vector>

/// The connection to a compositor, apart from Qt's, with what the compositor offers. The main
/// thread's events are those of the default queue; others have queues of their own.
class WaylandConnection : public QObject {
    Q_OBJECT

public:
    enum class Outcome { Connected, NoCompositor, NoLayerShell };
    struct Attempt {
        Outcome outcome;
        std::unique_ptr<WaylandConnection> connection; ///< null unless connected
    };
    /// The compositor that WAYLAND_DISPLAY names. Waits until it has said what it offers, but for
    /// each of two answers no longer than `patience`. Needs an application object.
    static Attempt open(std::chrono::milliseconds patience = std::chrono::seconds(1));

    /// Whether WAYLAND_DISPLAY names one that answers. May be asked before there is an application
    /// object.
    static bool isThere();

    explicit WaylandConnection(WaylandHandle<wl_display> display);
    ~WaylandConnection() override;

    wl_display* display() const { return m_display.get(); }
    wl_compositor* compositor() const { return m_compositor.get(); }
    wl_shm* shm() const { return m_shm.get(); }
    zwlr_layer_shell_v1* layerShell() const { return m_layerShell.get(); }
    wp_viewporter* viewporter() const { return m_viewporter.get(); } ///< or null
    wp_fractional_scale_manager_v1* fractionalScales() const
    {
        return m_fractions.get();
    } ///< or null
    /// Whether it is Plasma's compositor, whose desktop, picture and icons in one, lies in the
    /// layer "background".
    bool isPlasma() const { return m_isPlasma; }
    /// In the order in which the compositor told of them.
    const std::vector<std::unique_ptr<WaylandOutput>>& outputs() const { return m_outputs; }
    /// The seats that have come since this was called last. They tell what they have only once,
    /// soon: whoever takes them has to listen at once.
    struct Seat {
        std::uint32_t name; ///< the registry's
        WaylandHandle<wl_seat> proxy;
    };
    std::vector<Seat> takeNewSeats();

    void followDispatcher();
    /// Destroys a surface that is not used any more when the compositor has said all about it:
    /// libwayland (1.21) loses memory when events tell of surfaces that are gone.
    void retire(WaylandHandle<wl_surface> surface);
    /// Sends what has been asked for so far.
    void flush();

Q_SIGNALS:
    /// An output came, went, or is another now.
    void outputsChanged();
    void seatsCame();
    void seatGone(quint32 name);
    /// The compositor has gone, or does not want us any more.
    void lost();

private:
    static const wl_registry_listener registryListener;

    Outcome askWhatThereIs(std::chrono::milliseconds patience);
    void bind(std::uint32_t name, const char* interface, std::uint32_t version);
    void remove(std::uint32_t name);
    void startReading();
    void read();
    void dispatch();
    void checkForLoss();

    WaylandHandle<wl_display> m_display;
    WaylandHandle<wl_registry> m_registry;
    WaylandHandle<wl_compositor> m_compositor;
    WaylandHandle<wl_shm> m_shm;
    WaylandHandle<zwlr_layer_shell_v1> m_layerShell;
    WaylandHandle<wp_viewporter> m_viewporter;
    bool m_isPlasma = false;
    WaylandHandle<wp_fractional_scale_manager_v1> m_fractions;
    WaylandHandle<zxdg_output_manager_v1> m_logicalOutputs;
    struct Global {
        std::uint32_t name;
        std::uint32_t version;
    };
    std::vector<Global> m_newSeats;
    std::vector<std::unique_ptr<WaylandOutput>> m_outputs;
    class RetiredSurface;
    std::vector<std::unique_ptr<RetiredSurface>> m_retired;
    QSocketNotifier m_notifier;
    bool m_isLost = false;
};
