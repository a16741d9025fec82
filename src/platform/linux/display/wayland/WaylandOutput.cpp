#include "platform/linux/display/wayland/WaylandOutput.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

WaylandOutput& output(void* self)
{
    return *static_cast<WaylandOutput*>(self);
}

} // namespace

const wl_output_listener WaylandOutput::outputListener{
    [](void* self,
        wl_output* /*proxy*/,
        int x,
        int y,
        int /*widthInMillimetres*/,
        int /*heightInMillimetres*/,
        int /*subpixel*/,
        const char* /*make*/,
        const char* /*model*/,
        int transform) {
        output(self).m_position = {x, y};
        output(self).m_transform = transform;
    },
    [](void* self, wl_output* /*proxy*/, std::uint32_t flags, int width, int height, int /*rate*/) {
        if ((flags & WL_OUTPUT_MODE_CURRENT) != 0)
            output(self).m_mode = {width, height};
    },
    [](void* self, wl_output* /*proxy*/) {
        output(self).m_isKnown = true;
        output(self).m_changed();
    },
    [](void* self, wl_output* /*proxy*/, int scale) { output(self).m_scale = std::max(scale, 1); },
    [](void* self, wl_output* /*proxy*/, const char* name) {
        output(self).m_name = QString::fromUtf8(name);
    },
    [](void* /*self*/, wl_output* /*proxy*/, const char* /*description*/) {},
};

const zxdg_output_v1_listener WaylandOutput::logicalListener{
    [](void* self, zxdg_output_v1* /*proxy*/, int x, int y) {
        output(self).m_logicalFrame.moveTo(x, y);
    },
    [](void* self, zxdg_output_v1* /*proxy*/, int width, int height) {
        output(self).m_logicalFrame.setSize({width, height});
    },
    [](void* self, zxdg_output_v1* proxy) {
        // From version 3 on the output's own word ends the changes.
        constexpr std::uint32_t outputTells = 3;
        if (zxdg_output_v1_get_version(proxy) < outputTells && output(self).m_isKnown)
            output(self).m_changed();
    },
    [](void* self, zxdg_output_v1* /*proxy*/, const char* name) {
        output(self).m_name = QString::fromUtf8(name);
    },
    [](void* /*self*/, zxdg_output_v1* /*proxy*/, const char* /*description*/) {},
};

WaylandOutput::WaylandOutput(WaylandHandle<wl_output> output,
    std::uint32_t globalName,
    zxdg_output_manager_v1* manager,
    std::function<void()> changed)
    : m_output(std::move(output)), m_globalName(globalName), m_changed(std::move(changed))
{
    wl_output_add_listener(m_output.get(), &outputListener, this);
    if (!manager)
        return;
    m_logical.reset(zxdg_output_manager_v1_get_xdg_output(manager, m_output.get()));
    zxdg_output_v1_add_listener(m_logical.get(), &logicalListener, this);
}

/// As people see it.
QSize WaylandOutput::deviceSize() const
{
    const bool isOnItsSide = m_transform % 2 != 0; // the quarter turns are odd
    return isOnItsSide ? m_mode.transposed() : m_mode;
}

Screen WaylandOutput::screen() const
{
    const auto name = m_name.isEmpty() ? u"output %1"_s.arg(m_globalName) : m_name;
    if (!m_logicalFrame.isEmpty())
        return {name, m_logicalFrame};
    return {name, {m_position, deviceSize() / m_scale}};
}

double WaylandOutput::scale() const
{
    const auto logicalWidth = screen().frame.width();
    if (logicalWidth <= 0 || m_mode.isEmpty())
        return m_scale;
    // Some compositors tell of a new mode before they tell of its logical size. The integer scale
    // is never less than the real one; without it a small mode that becomes a large one would
    // give hundreds, and a picture that fills the memory.
    const auto ratio = static_cast<double>(deviceSize().width()) / logicalWidth;
    return std::min(ratio, static_cast<double>(m_scale));
}
