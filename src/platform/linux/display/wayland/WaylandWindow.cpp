#include "platform/linux/display/wayland/WaylandWindow.h"

#include <chrono>
#include <cmath>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto retryDelay = 1s;

WaylandWindow& window(void* self)
{
    return *static_cast<WaylandWindow*>(self);
}

} // namespace

const zwlr_layer_surface_v1_listener WaylandWindow::layerListener{
    [](void* self,
        zwlr_layer_surface_v1* /*surface*/,
        std::uint32_t serial,
        std::uint32_t width,
        std::uint32_t height) {
        window(self).configure(serial, QSize(static_cast<int>(width), static_cast<int>(height)));
    },
    [](void* self, zwlr_layer_surface_v1* /*surface*/) {
        window(self).dropSurface();
        window(self).m_retry.start();
    },
};

const wp_fractional_scale_v1_listener WaylandWindow::scaleListener{
    [](void* self, wp_fractional_scale_v1* /*fraction*/, std::uint32_t scale) {
        constexpr double unit = 120;
        window(self).m_preferred = scale / unit;
        window(self).tellTargetChange();
    },
};

WaylandWindow::WaylandWindow(const Screen& screen) : NativeWindow(screen)
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(retryDelay);
    m_retry.callOnTimeout([this] { makeSurface(); });
}

WaylandWindow::~WaylandWindow()
{
    dropSurface();
}

void WaylandWindow::attach(WaylandConnection& connection, const WaylandOutput* output)
{
    m_connection = &connection;
    m_output = output;
    makeSurface();
}

void WaylandWindow::detach()
{
    dropSurface();
    m_output = nullptr;
    m_connection = nullptr;
}

std::uint32_t WaylandWindow::layer() const
{
    // Within a layer Plasma shows in front what came last, which may be its desktop at any time.
    const bool isInFront = m_committed.order == StackingOrder::Front || m_connection->isPlasma();
    return isInFront ? ZWLR_LAYER_SHELL_V1_LAYER_BOTTOM : ZWLR_LAYER_SHELL_V1_LAYER_BACKGROUND;
}

void WaylandWindow::makeSurface()
{
    if (m_surface || !m_output || !m_committed.order)
        return;
    WaylandHandle<wl_surface> surface(wl_compositor_create_surface(m_connection->compositor()));
    m_wlSurface = surface.get();
    m_layerSurface.reset(zwlr_layer_shell_v1_get_layer_surface(
        m_connection->layerShell(), m_wlSurface, m_output->proxy(), layer(), "wallpaper"));
    zwlr_layer_surface_v1_add_listener(m_layerSurface.get(), &layerListener, this);
    zwlr_layer_surface_v1_set_anchor(m_layerSurface.get(),
        ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
            ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT);
    constexpr int belowPanels = -1; // the whole output, whatever others have reserved
    zwlr_layer_surface_v1_set_exclusive_zone(m_layerSurface.get(), belowPanels);
    zwlr_layer_surface_v1_set_keyboard_interactivity(
        m_layerSurface.get(), ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE);
    if (m_connection->viewporter()) {
        m_viewport.reset(wp_viewporter_get_viewport(m_connection->viewporter(), m_wlSurface));
        if (m_connection->fractionalScales()) {
            m_fraction.reset(wp_fractional_scale_manager_v1_get_fractional_scale(
                m_connection->fractionalScales(), m_wlSurface));
            wp_fractional_scale_v1_add_listener(m_fraction.get(), &scaleListener, this);
        }
    }
    if (m_connection->isPlasma()) {
        // The desktop behind us is used as ever.
        const WaylandHandle<wl_region> nothing(
            wl_compositor_create_region(m_connection->compositor()));
        wl_surface_set_input_region(m_wlSurface, nothing.get());
    }
    wl_surface_commit(m_wlSurface); // asks for the size
    m_surface = std::make_shared<WaylandSurface>(std::move(surface));
    m_connection->flush();
}

void WaylandWindow::dropSurface()
{
    m_retry.stop();
    if (!m_surface)
        return;
    auto surface = m_surface->end(); // first: the render thread may be about to use it
    m_surface.reset();
    m_fraction.reset();
    m_viewport.reset();
    m_layerSurface.reset();
    m_connection->retire(std::move(surface));
    m_wlSurface = nullptr;
    m_size = {};
    m_preferred = 0;
    tellTargetChange();
}

void WaylandWindow::configure(std::uint32_t serial, const QSize& size)
{
    zwlr_layer_surface_v1_ack_configure(m_layerSurface.get(), serial);
    // Nothing is no size: it stays what it was, at first the output's.
    auto wanted = size.isEmpty() ? m_size : size;
    if (wanted.isEmpty())
        wanted = m_output->screen().frame.size();
    if (wanted.isEmpty() || wanted == std::exchange(m_size, wanted))
        return;
    describeSize();
    tellTargetChange();
}

/// Takes effect with the next picture.
void WaylandWindow::describeSize()
{
    m_surface->withSurface([this](wl_surface* surface) {
        if (m_viewport)
            wp_viewport_set_destination(m_viewport.get(), m_size.width(), m_size.height());
        else
            wl_surface_set_buffer_scale(surface, m_output->integerScale());
        const WaylandHandle<wl_region> everything(
            wl_compositor_create_region(m_connection->compositor()));
        wl_region_add(everything.get(), 0, 0, m_size.width(), m_size.height());
        wl_surface_set_opaque_region(surface, everything.get());
    });
}

void WaylandWindow::updateScale()
{
    if (m_size.isEmpty())
        return;
    describeSize();
    tellTargetChange();
}

double WaylandWindow::scale() const
{
    if (!m_viewport)
        return m_output->integerScale();
    return m_preferred > 0 ? m_preferred : m_output->scale();
}

void WaylandWindow::commit(const WindowState& wish, bool /*isOrderedAnew*/)
{
    const auto former = std::exchange(m_committed, wish);
    if (!wish.order) {
        dropSurface();
        return;
    }
    makeSurface();
    const bool isOtherLayer = former.order && former.order != wish.order && m_layerSurface;
    if (!isOtherLayer)
        return;
    if (zwlr_layer_surface_v1_get_version(m_layerSurface.get()) >=
        ZWLR_LAYER_SURFACE_V1_SET_LAYER_SINCE_VERSION) {
        zwlr_layer_surface_v1_set_layer(m_layerSurface.get(), layer());
        m_surface->withSurface([](wl_surface* surface) { wl_surface_commit(surface); });
    } else {
        dropSurface();
        makeSurface();
    }
}

FrameTarget WaylandWindow::target(const QRect& viewFrame) const
{
    if (m_size.isEmpty())
        return {};
    const QSize pixels(static_cast<int>(std::lround(m_size.width() * scale())),
        static_cast<int>(std::lround(m_size.height() * scale())));
    return {m_surface, pixels, viewFrame, scale()};
}
