#pragma once

#include <wayland-client.h>

#include "fractional-scale-v1-client.h"
#include "viewporter-client.h"
#include "wlr-layer-shell-unstable-v1-client.h"
#include "xdg-output-unstable-v1-client.h"

#include <memory>

/// Owners of what libwayland hands out. Proxies go before their queue, and that before the display.
struct WaylandDeleter {
    void operator()(wl_display* display) const { wl_display_disconnect(display); }
    void operator()(wl_event_queue* queue) const { wl_event_queue_destroy(queue); }
    void operator()(wl_registry* registry) const { wl_registry_destroy(registry); }
    void operator()(wl_compositor* compositor) const { wl_compositor_destroy(compositor); }
    void operator()(wl_shm* shm) const { wl_shm_destroy(shm); }
    void operator()(wl_shm_pool* pool) const { wl_shm_pool_destroy(pool); }
    void operator()(wl_buffer* buffer) const { wl_buffer_destroy(buffer); }
    void operator()(wl_callback* callback) const { wl_callback_destroy(callback); }
    void operator()(wl_region* region) const { wl_region_destroy(region); }
    void operator()(wl_surface* surface) const { wl_surface_destroy(surface); }
    void operator()(wl_output* output) const
    {
        end(output, WL_OUTPUT_RELEASE_SINCE_VERSION, wl_output_release, wl_output_destroy);
    }
    void operator()(wl_seat* seat) const
    {
        end(seat, WL_SEAT_RELEASE_SINCE_VERSION, wl_seat_release, wl_seat_destroy);
    }
    void operator()(wl_pointer* pointer) const
    {
        end(pointer, WL_POINTER_RELEASE_SINCE_VERSION, wl_pointer_release, wl_pointer_destroy);
    }
    void operator()(wl_touch* touch) const
    {
        end(touch, WL_TOUCH_RELEASE_SINCE_VERSION, wl_touch_release, wl_touch_destroy);
    }
    void operator()(zwlr_layer_shell_v1* shell) const
    {
        end(shell,
            ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION,
            zwlr_layer_shell_v1_destroy,
            [](auto* proxy) { wl_proxy_destroy(reinterpret_cast<wl_proxy*>(proxy)); });
    }
    void operator()(zwlr_layer_surface_v1* surface) const
    {
        zwlr_layer_surface_v1_destroy(surface);
    }
    void operator()(wp_viewporter* viewporter) const { wp_viewporter_destroy(viewporter); }
    void operator()(wp_viewport* viewport) const { wp_viewport_destroy(viewport); }
    void operator()(wp_fractional_scale_manager_v1* manager) const
    {
        wp_fractional_scale_manager_v1_destroy(manager);
    }
    void operator()(wp_fractional_scale_v1* scale) const { wp_fractional_scale_v1_destroy(scale); }
    void operator()(zxdg_output_manager_v1* manager) const
    {
        zxdg_output_manager_v1_destroy(manager);
    }
    void operator()(zxdg_output_v1* output) const { zxdg_output_v1_destroy(output); }

private:
    /// Tells the compositor where the version has a request for that.
    template <typename Type>
    static void end(Type* proxy, std::uint32_t since, auto release, auto destroy)
    {
        if (wl_proxy_get_version(reinterpret_cast<wl_proxy*>(proxy)) >= since)
            release(proxy);
        else
            destroy(proxy);
    }
};

template <typename Type>
using WaylandHandle = std::unique_ptr<Type, WaylandDeleter>;

/// A proxy that stands for another one, so that what is made through it belongs to another queue.
struct WaylandWrapperDeleter {
    template <typename Type>
    void operator()(Type* wrapper) const
    {
        wl_proxy_wrapper_destroy(wrapper);
    }
};

template <typename Type>
using WaylandWrapper = std::unique_ptr<Type, WaylandWrapperDeleter>;

template <typename Type>
WaylandWrapper<Type> wrapForQueue(Type* proxy, wl_event_queue* queue)
{
    auto* const wrapper = static_cast<Type*>(wl_proxy_create_wrapper(proxy));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue);
    return WaylandWrapper<Type>(wrapper);
}
