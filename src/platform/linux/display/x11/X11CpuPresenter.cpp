#include "platform/linux/display/x11/X11CpuPresenter.h"

#include "platform/linux/display/x11/X11Surface.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint8_t depth = 24; // the windows' (X11DesktopWindow)

} // namespace

X11CpuPresenter::X11CpuPresenter() : m_connection(xcb_connect(nullptr, nullptr))
{
    if (hasExtension(m_connection.get(), xcb_shm_id)) {
        const auto* shm = xcb_get_extension_data(m_connection.get(), &xcb_shm_id);
        m_shmOpcode = shm->major_opcode;
        m_shmFirstEvent = shm->first_event;
    }
}

X11CpuPresenter::~X11CpuPresenter() = default;

int X11CpuPresenter::descriptor() const
{
    // A broken connection's descriptor would be readable for ever; poll skips negative ones.
    return xcb_connection_has_error(m_connection.get())
               ? -1
               : xcb_get_file_descriptor(m_connection.get());
}

void X11CpuPresenter::processEvents()
{
    while (const auto event = own(xcb_poll_for_event(m_connection.get()))) {
        const bool isCompletion = m_shmOpcode != 0 && (event->response_type & 0x7f) ==
                                                          m_shmFirstEvent + XCB_SHM_COMPLETION;
        // A window that is gone answers with an error instead.
        const auto& error = reinterpret_cast<const xcb_generic_error_t&>(*event);
        const bool isRefusal = event->response_type == 0 && error.major_code == m_shmOpcode &&
                               error.minor_code == XCB_SHM_PUT_IMAGE;
        if (isCompletion || isRefusal)
            --m_unconfirmedPictures;
    }
}

void X11CpuPresenter::removeTargets()
{
    for (const auto& target : m_targets)
        xcb_free_gc(m_connection.get(), target.graphics);
    m_targets.clear();
}

void X11CpuPresenter::setTargets(const std::vector<FrameTarget>& targets)
{
    removeTargets();

    // Canvases of sizes that are still wanted are kept, with the picture that is on them.
    auto kept = std::exchange(m_canvases, {});
    const auto canvasOf = [&](const QSize& size) -> SharedCanvas* {
        const auto hasSize = [&](const auto& canvas) {
            return canvas && canvas->memory().size() == size;
        };
        if (const auto ready = std::ranges::find_if(m_canvases, hasSize); ready != m_canvases.end())
            return ready->get();
        const auto old = std::ranges::find_if(kept, hasSize);
        auto canvas =
            old != kept.end() ? std::move(*old) : SharedCanvas::create(m_connection.get(), size);
        if (!canvas)
            return nullptr;
        return m_canvases.emplace_back(std::move(canvas)).get();
    };

    for (const auto& target : targets) {
        const auto rectangle = target.pixelRectangle();
        const auto visible = target.visiblePixels();
        auto* const canvas = visible.isEmpty() ? nullptr : canvasOf(rectangle.size());
        if (!canvas)
            continue; // nothing to see, or no memory: the others go on
        const auto window = static_cast<const X11Surface&>(*target.surface).window();
        const auto graphics = xcb_generate_id(m_connection.get());
        xcb_create_gc(m_connection.get(), graphics, window, 0, nullptr);
        m_targets.push_back({window,
            graphics,
            canvas,
            visible.translated(-rectangle.topLeft()),
            visible.topLeft()});
    }
    xcb_flush(m_connection.get());
}

bool X11CpuPresenter::draw(mpv_render_context& context)
{
    for (const auto& canvas : m_canvases) {
        auto& memory = canvas->memory();
        CpuDrawing::draw(context, memory.size(), memory.stride(), memory.pixels());
    }
    return true; // there is a canvas for each target
}

void X11CpuPresenter::clear()
{
    for (const auto& canvas : m_canvases)
        canvas->memory().fillBlack();
}

void X11CpuPresenter::present()
{
    for (const auto& target : m_targets) {
        if (target.canvas->segment() != XCB_NONE)
            putShared(target);
        else
            sendPixels(target);
    }
    xcb_flush(m_connection.get());
}

void X11CpuPresenter::putShared(const Target& target)
{
    const auto rowPixels =
        static_cast<std::uint16_t>(target.canvas->memory().stride() / CpuDrawing::bytesPerPixel);
    xcb_shm_put_image(m_connection.get(),
        target.window,
        target.graphics,
        rowPixels,
        static_cast<std::uint16_t>(target.canvas->memory().size().height()),
        static_cast<std::uint16_t>(target.source.x()),
        static_cast<std::uint16_t>(target.source.y()),
        static_cast<std::uint16_t>(target.source.width()),
        static_cast<std::uint16_t>(target.source.height()),
        static_cast<std::int16_t>(target.destination.x()),
        static_cast<std::int16_t>(target.destination.y()),
        depth,
        XCB_IMAGE_FORMAT_Z_PIXMAP,
        1,
        target.canvas->segment(),
        0);
    ++m_unconfirmedPictures;
}

/// In strips, because a request has a greatest length.
void X11CpuPresenter::sendPixels(const Target& target)
{
    const auto longest = std::size_t{xcb_get_maximum_request_length(m_connection.get())} * 4;
    constexpr std::size_t header = 64;
    if (longest <= header)
        return; // the connection is broken
    const auto rowBytes =
        static_cast<std::size_t>(target.source.width()) * CpuDrawing::bytesPerPixel;
    const auto rowsInStrip = static_cast<int>(std::clamp<std::size_t>(
        (longest - header) / rowBytes, 1, static_cast<std::size_t>(target.source.height())));

    const auto& memory = target.canvas->memory();
    std::vector<std::uint8_t> strip;
    for (int first = 0; first < target.source.height(); first += rowsInStrip) {
        const int rows = std::min(rowsInStrip, target.source.height() - first);
        strip.resize(rowBytes * static_cast<std::size_t>(rows));
        for (int row = 0; row < rows; ++row) {
            const QPoint start(target.source.x(), target.source.y() + first + row);
            std::memcpy(strip.data() + static_cast<std::size_t>(row) * rowBytes,
                memory.pixels() + memory.offsetOf(start),
                rowBytes);
        }
        xcb_put_image(m_connection.get(),
            XCB_IMAGE_FORMAT_Z_PIXMAP,
            target.window,
            target.graphics,
            static_cast<std::uint16_t>(target.source.width()),
            static_cast<std::uint16_t>(rows),
            static_cast<std::int16_t>(target.destination.x()),
            static_cast<std::int16_t>(target.destination.y() + first),
            0,
            depth,
            static_cast<std::uint32_t>(strip.size()),
            strip.data());
    }
}
