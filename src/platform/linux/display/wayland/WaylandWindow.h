#pragma once

#include "base/Disposable.h"
#include "platform/linux/display/NativeWindow.h"
#include "platform/linux/display/wayland/WaylandConnection.h"
#include "platform/linux/display/wayland/WaylandSurface.h"

#include <QTimer>

#include <memory>
#include <optional>

/// A desktop window on a compositor with layer shell: a surface that fills its output, in the layer
/// "background", or in "bottom" in front of the desktop's icons. The surface comes and goes with
/// the output and with the connection; the window stays.
class WaylandWindow : public NativeWindow {
public:
    explicit WaylandWindow(const Screen& screen);
    ~WaylandWindow() override;

    /// Kept as long as the window lives.
    void setListing(Disposable listing) { m_listing = std::move(listing); }

    /// Gets a surface if it is to be shown and has none. `output` is the window's, or null while
    /// there is none. Both are borrowed until `detach`.
    void attach(WaylandConnection& connection, const WaylandOutput* output);
    /// Before the output or the connection goes.
    void detach();
    const WaylandOutput* output() const { return m_output; }
    /// The output may have another scale.
    void updateScale();

    bool isSurface(const wl_surface* surface) const { return surface && m_wlSurface == surface; }
    WindowViews* receiver() const { return views(); }

    void commit(const WindowState& wish, bool isOrderedAnew) override;
    FrameTarget target(const QRect& viewFrame) const override;
    bool isShown() const override { return m_surface != nullptr; }
    bool isCovered() const override { return m_surface && m_surface->isOverdue(); }

private:
    static const zwlr_layer_surface_v1_listener layerListener;
    static const wp_fractional_scale_v1_listener scaleListener;

    void makeSurface();
    void dropSurface();
    void configure(std::uint32_t serial, const QSize& size);
    void describeSize();
    double scale() const;
    std::uint32_t layer() const;

    std::optional<Disposable> m_listing;
    WaylandConnection* m_connection = nullptr;
    const WaylandOutput* m_output = nullptr;
    WindowState m_committed;
    std::shared_ptr<WaylandSurface> m_surface; // shared with the render thread
    wl_surface* m_wlSurface = nullptr;         // the same, to compare with
    WaylandHandle<zwlr_layer_surface_v1> m_layerSurface;
    WaylandHandle<wp_viewport> m_viewport;
    WaylandHandle<wp_fractional_scale_v1> m_fraction;
    QSize m_size;           // logical; empty until the surface has been configured
    double m_preferred = 0; // the compositor's word on the scale; 0 for none
    QTimer m_retry;         // after the compositor has closed the surface of an output that stays
};
