#pragma once

#include "platform/Screen.h"
#include "platform/linux/display/wayland/WaylandHandles.h"

#include <functional>

/// One monitor of the compositor.
class WaylandOutput {
public:
    /// `changed` is called when all about it is known, and after each change.
    WaylandOutput(
        WaylandHandle<wl_output> output, std::uint32_t globalName, std::function<void()> changed);
    /// Does nothing with a null manager, and when it has been asked for.
    void askForLogicalFrame(zxdg_output_manager_v1* manager);

    std::uint32_t globalName() const { return m_globalName; }
    wl_output* proxy() const { return m_output.get(); }
    bool isKnown() const { return m_isKnown; }

    /// In logical pixels.
    Screen screen() const;
    /// Device pixels for each logical one.
    double scale() const;
    int integerScale() const { return m_scale; }

private:
    static const wl_output_listener outputListener;
    static const zxdg_output_v1_listener logicalListener;

    QSize deviceSize() const;

    WaylandHandle<wl_output> m_output;
    std::uint32_t m_globalName;
    WaylandHandle<zxdg_output_v1> m_logical;
    std::function<void()> m_changed;
    QString m_name;
    QPoint m_position;
    QSize m_mode;
    int m_transform = WL_OUTPUT_TRANSFORM_NORMAL;
    int m_scale = 1;
    QRect m_logicalFrame; // empty where the compositor does not tell
    bool m_isKnown = false;
};
