#include "desktops/DesktopDescription.h"

using namespace Qt::StringLiterals;

namespace {

const auto noIcons = u"Nothing draws icons on this desktop."_s;
const auto noMenu = u"This desktop has no menu of its own."_s;
const auto noDisplay =
    u"Without its compositor there is no display to start on: the helper says so "
    "and ends."_s;

} // namespace

const std::vector<DesktopDescription>& DesktopDescription::all()
{
    static const std::vector<DesktopDescription> descriptions{
        {.name = u"openbox"_s,
            .title = u"openbox"_s,
            .windowManager = u"openbox"_s,
            .packages = {u"openbox"_s},
            .whyNoIcons = noIcons},
        {.name = u"i3"_s,
            .title = u"i3"_s,
            .windowManager = u"i3"_s,
            .packages = {u"i3-wm"_s},
            // Or it asks for one, and has a bar.
            .files = {{u".config/i3/config"_s, "# i3 config file (v4)\nfont pango:monospace 8\n"}},
            .whyNoIcons = noIcons,
            .whyNoMenu = noMenu},
        {.name = u"xfce"_s,
            .title = u"xfwm4, xfdesktop"_s,
            .windowManager = u"xfwm4"_s,
            .desktopProgram = u"xfdesktop"_s,
            .packages = {u"xfwm4"_s, u"xfdesktop4"_s}},
        {.name = u"plasma"_s,
            .title = u"kwin_x11, plasmashell"_s,
            .windowManager = u"kwin_x11"_s,
            .desktopProgram = u"plasmashell"_s,
            .packages = {u"kwin-x11"_s, u"plasma-workspace"_s},
            .panelHeight = 50},
        {.name = u"mate"_s,
            .title = u"marco, caja"_s,
            .windowManager = u"marco"_s,
            .desktopProgram = u"caja --no-default-window --force-desktop"_s,
            .packages = {u"marco"_s, u"caja"_s}},
        {.name = u"lxqt"_s,
            .title = u"openbox, pcmanfm-qt"_s,
            .windowManager = u"openbox"_s,
            .desktopProgram = u"pcmanfm-qt --desktop"_s,
            .packages = {u"openbox"_s, u"pcmanfm-qt"_s},
            .files = {{u".config/pcmanfm-qt/default/settings.conf"_s,
                "[System]\nFallbackIconThemeName=Adwaita\n[Desktop]\nBgColor=#204060\n"}}},
        {.name = u"cinnamon"_s,
            .title = u"muffin, nemo-desktop"_s,
            .windowManager = u"muffin"_s,
            .desktopProgram = u"nemo-desktop"_s,
            .packages = {u"muffin"_s, u"nemo"_s}},
        {.name = u"mutter"_s,
            .title = u"mutter on X11"_s,
            .windowManager = u"mutter --x11"_s,
            .packages = {u"mutter"_s},
            .whyNoIcons = noIcons,
            .whyNoMenu = noMenu},
        {.name = u"sway"_s,
            .title = u"sway"_s,
            .base = Base::Sway,
            .packages = {u"sway"_s},
            .whyNoIcons = noIcons,
            .whyNoMenu = noMenu,
            .whyNoEarlyStart = noDisplay},
        {.name = u"plasma-wayland"_s,
            .title = u"kwin_wayland, plasmashell"_s,
            .base = Base::KWin,
            .desktopProgram = u"plasmashell"_s,
            .packages = {u"kwin-wayland"_s, u"plasma-workspace"_s},
            .panelHeight = 50},
        {.name = u"mutter-wayland"_s,
            .title = u"mutter on Wayland"_s,
            .base = Base::Mutter,
            .packages = {u"mutter"_s, u"xwayland"_s},
            .whyNoIcons = noIcons,
            .whyNoMenu = noMenu,
            .whyNoEarlyStart = noDisplay,
            .whyNoRestart = u"Its X server, on which the video is shown, ends with it, and so does "
                            "the helper."_s,
            .whyNoPlugging = u"Without a screen this compositor's monitors are fixed when it "
                             "starts."_s},
    };
    return descriptions;
}
