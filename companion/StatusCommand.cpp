#include "companion/CommandHandlers.h"
#include "companion/Output.h"
#include "platform/SessionInstance.h"

#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

template <std::size_t Count>
QString nameOf(const std::array<const char*, Count>& names, qint64 rawValue)
{
    return rawValue >= 0 && rawValue < static_cast<qint64>(Count)
               ? QString::fromLatin1(names[static_cast<std::size_t>(rawValue)])
               : QString::number(rawValue);
}

constexpr std::array orderNames{"single", "list", "random"};         // as VideoPlayerPlayModel
constexpr std::array screenNames{"integration", "mirror", "single"}; // as VideoPlayerScreenType

} // namespace

ExitStatus CommandHandlers::status(Companion& companion, const Arguments& arguments)
{
    const auto& preferences = companion.preferences();
    const auto entries = companion.entries();
    const auto current = std::ranges::find_if(entries, [&](const LibraryEditor::Entry& entry) {
        return entry.sign == preferences.playingVideoSign();
    });
    const bool isRunning = SessionInstance::isClaimed();
    const auto order = nameOf(orderNames, preferences.playModel());
    const auto screens = nameOf(screenNames, preferences.monitorArrange());
    const bool isSingleScreen =
        preferences.monitorArrange() == static_cast<qint64>(VideoPlayerScreenType::lonely);
    // What is heard: the helper limits it, and takes what is not a number for silence.
    const auto gain = std::isnan(preferences.volume()) ? 0.0F : preferences.volume();
    const auto volume = std::lround(100 * std::clamp(gain, 0.0F, 1.0F));

    if (arguments.isJson) {
        QJsonObject object{{"running", isRunning},
            {"open", preferences.isOpenPlayer()},
            {"playing", preferences.isPlaying()},
            {"order", order},
            {"screens", screens},
            {"screen", preferences.screenIndex() + 1},
            {"volume", static_cast<qint64>(volume)},
            {"muted", preferences.mute()},
            {"videos", static_cast<qint64>(entries.size())}};
        if (current != entries.end()) {
            object.insert("sign", current->sign);
            object.insert("title", current->title);
            object.insert("path", Output::pathText(current->url));
        }
        Output::print(QJsonDocument(object));
        return ExitStatus::Done;
    }
    const auto state = !preferences.isOpenPlayer() ? u"closed"
                       : preferences.isPlaying()   ? u"playing"
                                                   : u"paused";
    Output::print(QStringLiteral("helper     %1")
                      .arg(isRunning ? u"running" : u"not running in this session"));
    Output::print(QStringLiteral("wallpaper  %1").arg(state));
    Output::print(
        QStringLiteral("video      %1")
            .arg(current != entries.end() ? current->title : QStringLiteral("none chosen")));
    Output::print(QStringLiteral("order      %1").arg(order));
    Output::print(
        isSingleScreen
            ? QStringLiteral("screens    %1 %2").arg(screens).arg(preferences.screenIndex() + 1)
            : QStringLiteral("screens    %1").arg(screens));
    Output::print(
        QStringLiteral("volume     %1%2").arg(volume).arg(preferences.mute() ? u", muted" : u""));
    Output::print(QStringLiteral("library    %1 %2")
                      .arg(entries.size())
                      .arg(entries.size() == 1 ? u"video" : u"videos"));
    return ExitStatus::Done;
}
