#include "desktop/FakeCompositor.h"

#include "wlr-layer-shell-unstable-v1-server.h"

#include <algorithm>
#include <chrono>
#include <utility>
#include <wayland-server.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr QSize desktopSize{1280, 720};

template <typename Type>
Type* data(wl_resource* resource)
{
    return static_cast<Type*>(wl_resource_get_user_data(resource));
}

template <typename... Arguments>
void ignore(wl_client* /*client*/, wl_resource* /*resource*/, Arguments... /*unused*/)
{
}

void destroy(wl_client* /*client*/, wl_resource* resource)
{
    wl_resource_destroy(resource);
}

} // namespace

struct FakeCompositor::Surface {
    FakeCompositor& compositor;
    wl_resource* resource;
    Output* output = nullptr;
    wl_resource* layer = nullptr;
    wl_resource* attached = nullptr; // since the latest commit
    std::vector<wl_resource*> frames{};
    bool isConfigured = false;
};

/// What clients may ask for; most of it changes nothing here.
struct FakeCompositor::Requests {
    static constexpr struct wl_region_interface region {
        destroy, ignore, ignore
    };
    static constexpr struct wl_output_interface output {
        destroy
    };
    static constexpr struct zwlr_layer_surface_v1_interface layerSurface {
        ignore, ignore, ignore, ignore, ignore, ignore, ignore, destroy, ignore
    };

    static constexpr struct wl_surface_interface surface {
        destroy,
            [](wl_client* /*client*/, wl_resource* resource, wl_resource* buffer, int, int) {
                data<Surface>(resource)->attached = buffer;
            },
            ignore,
            [](wl_client* client, wl_resource* resource, std::uint32_t id) {
                auto* const frame = wl_resource_create(client, &wl_callback_interface, 1, id);
                wl_resource_set_implementation(
                    frame, nullptr, data<Surface>(resource), [](wl_resource* gone) {
                        if (auto* const surface = data<Surface>(gone))
                            std::erase(surface->frames, gone);
                    });
                data<Surface>(resource)->frames.push_back(frame);
            },
            ignore, ignore,
            [](wl_client* /*client*/, wl_resource* resource) {
                auto* const surface = data<Surface>(resource);
                surface->compositor.commit(*surface);
            },
            ignore, ignore, ignore, ignore
    };

    static constexpr struct wl_compositor_interface compositor {
        [](wl_client* client, wl_resource* self, std::uint32_t id) {
            auto* const resource = wl_resource_create(client, &wl_surface_interface, 4, id);
            wl_resource_set_implementation(resource,
                &surface,
                new Surface{*data<FakeCompositor>(self), resource},
                [](wl_resource* gone) {
                    const std::unique_ptr<Surface> former(data<Surface>(gone));
                    for (auto* const frame : former->frames)
                        wl_resource_set_user_data(frame, nullptr);
                    if (former->layer)
                        wl_resource_set_user_data(former->layer, nullptr);
                    FakeCompositor::forget(*former);
                });
        },
            [](wl_client* client, wl_resource* /*self*/, std::uint32_t id) {
                auto* const resource = wl_resource_create(client, &wl_region_interface, 1, id);
                wl_resource_set_implementation(resource, &region, nullptr, nullptr);
            }
    };

    static constexpr struct zwlr_layer_shell_v1_interface layerShell {
        [](wl_client* client,
            wl_resource* /*self*/,
            std::uint32_t id,
            wl_resource* surfaceResource,
            wl_resource* outputResource,
            std::uint32_t /*layer*/,
            const char* /*name*/) {
            auto* const made = data<Surface>(surfaceResource);
            made->output = data<Output>(outputResource);
            made->output->surface = made;
            ++made->output->surfaceCount;
            made->layer = wl_resource_create(client, &zwlr_layer_surface_v1_interface, 4, id);
            wl_resource_set_implementation(made->layer, &layerSurface, made, [](wl_resource* gone) {
                if (auto* const former = data<Surface>(gone)) {
                    former->layer = nullptr;
                    FakeCompositor::forget(*former);
                }
            });
        },
            destroy
    };
};

FakeCompositor::FakeCompositor()
    : VirtualDesktop(desktopSize),
      m_display(wl_display_create()),
      m_notifier(wl_event_loop_get_fd(wl_display_get_event_loop(m_display)), QSocketNotifier::Read)
{
    const auto file = m_folder.filePath(u"wayland"_s).toUtf8();
    qputenv("XDG_RUNTIME_DIR", m_folder.path().toUtf8());
    if (wl_display_add_socket(m_display, "wayland") != 0)
        qFatal("%s cannot be listened to.", file.constData());
    wl_display_init_shm(m_display);
    wl_global_create(m_display,
        &wl_compositor_interface,
        4,
        this,
        [](wl_client* client, void* self, std::uint32_t version, std::uint32_t id) {
            wl_resource_set_implementation(
                wl_resource_create(client, &wl_compositor_interface, static_cast<int>(version), id),
                &Requests::compositor,
                self,
                nullptr);
        });
    m_layerShell = wl_global_create(m_display,
        &zwlr_layer_shell_v1_interface,
        4,
        this,
        [](wl_client* client, void* self, std::uint32_t version, std::uint32_t id) {
            wl_resource_set_implementation(
                wl_resource_create(
                    client, &zwlr_layer_shell_v1_interface, static_cast<int>(version), id),
                &Requests::layerShell,
                self,
                nullptr);
        });
    addOutput({QPoint(), desktopSize});
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_frames, [this] { dispatch(); });
    constexpr auto frameInterval = 16ms;
    m_frames.callOnTimeout([this] { answerFrames(); });
    m_frames.start(frameInterval);
}

FakeCompositor::~FakeCompositor()
{
    disconnectAll();
    wl_display_destroy(m_display);
}

void FakeCompositor::dispatch()
{
    wl_event_loop_dispatch(wl_display_get_event_loop(m_display), 0);
    wl_display_flush_clients(m_display);
}

void FakeCompositor::addOutput(const QRect& frame)
{
    auto& added = *m_outputs.emplace_back(new Output{frame});
    added.global = wl_global_create(m_display,
        &wl_output_interface,
        4,
        &added,
        [](wl_client* client, void* self, std::uint32_t version, std::uint32_t id) {
            const auto& output = *static_cast<const Output*>(self);
            auto* const resource =
                wl_resource_create(client, &wl_output_interface, static_cast<int>(version), id);
            wl_resource_set_implementation(resource, &Requests::output, self, nullptr);
            wl_output_send_geometry(resource, output.frame.x(), 0, 0, 0, 0, "", "", 0);
            constexpr int frequency = 60'000; // millihertz
            wl_output_send_mode(resource,
                WL_OUTPUT_MODE_CURRENT,
                output.frame.width(),
                output.frame.height(),
                frequency);
            wl_output_send_name(resource, output.frame.x() == 0 ? "FAKE-1" : "FAKE-2");
            wl_output_send_done(resource);
        });
}

void FakeCompositor::setMonitors(Monitors monitors)
{
    for (const auto& former : m_outputs)
        remove(*former);
    const QRect left(0, 0, desktopSize.width() / 2, desktopSize.height());
    addOutput(monitors == Monitors::One ? QRect(QPoint(), desktopSize) : left);
    if (monitors == Monitors::TwoHalves)
        addOutput(left.translated(left.width(), 0));
    wl_display_flush_clients(m_display);
}

void FakeCompositor::remove(Output& output)
{
    if (!output.global)
        return;
    closeSurface(output);
    wl_global_destroy(std::exchange(output.global, nullptr));
    wl_display_flush_clients(m_display);
}

void FakeCompositor::commit(Surface& surface)
{
    if (surface.attached) {
        take(surface);
        return;
    }
    if (!surface.layer || std::exchange(surface.isConfigured, true))
        return;
    if (closesSurfacesAtOnce) {
        zwlr_layer_surface_v1_send_closed(surface.layer);
        return;
    }
    const auto size = configuresWithoutSize ? QSize(0, 0) : surface.output->frame.size();
    zwlr_layer_surface_v1_send_configure(surface.layer,
        1,
        static_cast<std::uint32_t>(size.width()),
        static_cast<std::uint32_t>(size.height()));
}

void FakeCompositor::take(Surface& surface)
{
    auto* const buffer = std::exchange(surface.attached, nullptr);
    auto* const memory = wl_shm_buffer_get(buffer);
    if (!memory || !surface.output || !surface.layer)
        return;
    auto& output = *surface.output;
    wl_shm_buffer_begin_access(memory);
    output.picture = QImage(static_cast<const uchar*>(wl_shm_buffer_get_data(memory)),
        wl_shm_buffer_get_width(memory),
        wl_shm_buffer_get_height(memory),
        wl_shm_buffer_get_stride(memory),
        QImage::Format_RGB32)
                         .copy();
    wl_shm_buffer_end_access(memory);
    ++output.pictureCount;
    if (std::exchange(removesOutputAtPicture, false)) {
        remove(output);
        return;
    }
    if (releasesBuffers)
        wl_buffer_send_release(buffer);
}

void FakeCompositor::forget(Surface& surface)
{
    if (!surface.output || surface.output->surface != &surface)
        return;
    surface.output->surface = nullptr;
    surface.output->picture = {};
}

void FakeCompositor::answerFrames()
{
    for (const auto& output : m_outputs) {
        if (!output->surface || !output->global || !output->sendsFrameCallbacks)
            continue;
        for (auto* const frame : std::exchange(output->surface->frames, {})) {
            wl_callback_send_done(frame, 0);
            wl_resource_destroy(frame);
        }
    }
    wl_display_flush_clients(m_display);
}

void FakeCompositor::removeLayerShell()
{
    wl_global_destroy(m_layerShell);
}

void FakeCompositor::closeSurface(Output& output)
{
    if (output.surface && output.surface->layer)
        zwlr_layer_surface_v1_send_closed(output.surface->layer);
    wl_display_flush_clients(m_display);
}

void FakeCompositor::disconnectAll()
{
    wl_display_destroy_clients(m_display);
}

void FakeCompositor::complain(Output& output)
{
    wl_resource_post_error(output.surface->resource, 0, "a test's complaint");
    wl_display_flush_clients(m_display);
}

void FakeCompositor::setReading(bool isReading)
{
    m_notifier.setEnabled(isReading);
    if (isReading)
        m_frames.start();
    else
        m_frames.stop();
}

void FakeCompositor::nameDisplay(QProcessEnvironment& environment) const
{
    environment.insert(u"WAYLAND_DISPLAY"_s, m_folder.filePath(u"wayland"_s));
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
}

std::optional<QColor> FakeCompositor::pixel(const QPoint& point) const
{
    const auto shows = [&](const auto& output) {
        return output->global && output->frame.contains(point) &&
               output->picture.size() == output->frame.size();
    };
    const auto found = std::ranges::find_if(m_outputs, shows);
    if (found == m_outputs.end())
        return std::nullopt;
    return (*found)->picture.pixelColor(point - (*found)->frame.topLeft());
}
