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

void insert(QJsonObject& object, const HelperStatus::Report& report)
{
    object.insert("state", report.state);
    if (!report.reason.isEmpty())
        object.insert("reason", report.reason);
    if (!report.problem.isEmpty())
        object.insert("problem", report.problem);
    QJsonObject monitors;
    for (const auto& [name, state] : report.monitors.asKeyValueRange())
        monitors.insert(name, state);
    object.insert("monitors", monitors);
    object.insert("renderer", report.renderer);
    object.insert("decoder", report.decoder);
    object.insert("framesShown", static_cast<qint64>(report.framesShown));
    object.insert("framesDropped", static_cast<qint64>(report.framesDropped));
    object.insert("version", report.version);
}

void print(const HelperStatus::Report& report)
{
    Output::print(u"helper     running, version %1"_s.arg(report.version));
    Output::print(u"wallpaper  %1"_s.arg(report.state));
    if (!report.reason.isEmpty())
        Output::print(u"reason     %1"_s.arg(report.reason));
    if (!report.problem.isEmpty() && report.problem != report.reason)
        Output::print(u"problem    %1"_s.arg(report.problem));
    for (const auto& [name, state] : report.monitors.asKeyValueRange())
        Output::print(u"monitor    %1: %2"_s.arg(name, state));
    if (!report.renderer.isEmpty())
        Output::print(u"pictures   %1 shown, %2 dropped; drawn by %3"_s.arg(report.framesShown)
                          .arg(report.framesDropped)
                          .arg(report.renderer));
    if (!report.decoder.isEmpty())
        Output::print(u"decoder    %1"_s.arg(report.decoder));
}

} // namespace

ExitStatus CommandHandlers::status(Companion& companion, const Arguments& arguments)
{
    const auto& preferences = companion.preferences();
    const auto entries = companion.entries();
    const auto current = std::ranges::find_if(entries, [&](const LibraryEditor::Entry& entry) {
        return entry.sign == preferences.playingVideoSign();
    });
    const bool isRunning = SessionInstance::isClaimed();
    const auto report = isRunning ? HelperStatus::read() : std::nullopt;
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
        if (report)
            insert(object, *report);
        if (current != entries.end()) {
            object.insert("sign", current->sign);
            object.insert("title", current->title);
            object.insert("path", Output::pathText(current->url));
        }
        Output::print(QJsonDocument(object));
        return ExitStatus::Done;
    }
    const auto wish = !preferences.isOpenPlayer() ? u"closed"
                      : preferences.isPlaying()   ? u"playing"
                                                  : u"paused";
    if (report) {
        print(*report);
    } else {
        Output::print(u"helper     %1"_s.arg(
            isRunning ? u"running, but it does not answer" : u"not running in this session"));
        Output::print(u"wallpaper  not shown; set to %1"_s.arg(wish));
    }
    const auto chosen = current != entries.end() ? current->title : u"none chosen"_s;
    const auto title = report && !report->title.isEmpty() ? report->title : chosen;
    Output::print(u"video      %1"_s.arg(title));
    Output::print(u"order      %1"_s.arg(order));
    Output::print(isSingleScreen
                      ? u"screens    %1 %2"_s.arg(screens).arg(preferences.screenIndex() + 1)
                      : u"screens    %1"_s.arg(screens));
    Output::print(u"volume     %1%2"_s.arg(volume).arg(preferences.mute() ? u", muted" : u""));
    Output::print(
        u"library    %1 %2"_s.arg(entries.size()).arg(entries.size() == 1 ? u"video" : u"videos"));
    return ExitStatus::Done;
}
