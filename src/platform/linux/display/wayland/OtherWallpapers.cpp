#include "platform/linux/display/wayland/OtherWallpapers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <string_view>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

namespace {

/// The name of the first process of this user that has one of these; empty where there is none.
template <std::size_t Count>
QString firstRunning(const std::array<std::string_view, Count>& names)
{
    const auto processes = QDir(u"/proc"_s).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const auto& process : processes) {
        if (process.ownerId() != getuid())
            continue;
        QFile file(process.filePath() + u"/comm"_s);
        if (!file.open(QIODevice::ReadOnly))
            continue; // not a process, or gone
        const auto name = file.readAll().trimmed().toStdString();
        if (std::ranges::find(names, name) != names.end())
            return QString::fromStdString(name);
    }
    return {};
}

} // namespace

QString OtherWallpapers::running()
{
    static constexpr std::array known{"swaybg"sv,
        "hyprpaper"sv,
        "swww-daemon"sv,
        "awww-daemon"sv,
        "wpaperd"sv,
        "mpvpaper"sv,
        "wbg"sv};
    return firstRunning(known);
}

bool OtherWallpapers::isPlasmaRunning()
{
    static constexpr std::array plasma{"plasmashell"sv};
    return !firstRunning(plasma).isEmpty();
}
