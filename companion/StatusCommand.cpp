#include "companion/CommandHandlers.h"
#include "companion/Output.h"
#include "platform/HelperStatus.h"
#include "platform/SessionInstance.h"

#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

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
    const auto problem = isRunning ? HelperStatus::problem().value_or(QString()) : QString();
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
        if (!problem.isEmpty())
            object.insert("problem", problem);
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
    Output::print(u"helper     %1"_s.arg(isRunning ? u"running" : u"not running in this session"));
    Output::print(u"wallpaper  %1"_s.arg(state));
    if (!problem.isEmpty())
        Output::print(u"problem    %1"_s.arg(problem));
    Output::print(
        u"video      %1"_s.arg(current != entries.end() ? current->title : u"none chosen"_s));
    Output::print(u"order      %1"_s.arg(order));
    Output::print(isSingleScreen
                      ? u"screens    %1 %2"_s.arg(screens).arg(preferences.screenIndex() + 1)
                      : u"screens    %1"_s.arg(screens));
    Output::print(u"volume     %1%2"_s.arg(volume).arg(preferences.mute() ? u", muted" : u""));
    Output::print(
        u"library    %1 %2"_s.arg(entries.size()).arg(entries.size() == 1 ? u"video" : u"videos"));
    return ExitStatus::Done;
}
