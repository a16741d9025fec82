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

QString OtherWallpapers::running()
{
    static constexpr std::array known{"swaybg"sv,
        "hyprpaper"sv,
        "swww-daemon"sv,
        "awww-daemon"sv,
        "wpaperd"sv,
        "mpvpaper"sv,
        "wbg"sv};
    const auto processes = QDir(u"/proc"_s).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const auto& process : processes) {
        if (process.ownerId() != getuid())
            continue;
        QFile file(process.filePath() + u"/comm"_s);
        if (!file.open(QIODevice::ReadOnly))
            continue; // not a process, or gone
        const auto name = file.readAll().trimmed().toStdString();
        if (std::ranges::find(known, name) != known.end())
            return QString::fromStdString(name);
    }
    return {};
}
