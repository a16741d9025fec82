#include "companion/CommandHandlers.h"
#include "companion/Output.h"
#include "library/OpeningRecord.h"
#include "library/VideoUrl.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// The one entry whose sign is, or begins with, what the person typed.
LibraryEditor::Entry entryOfPrefix(Companion& companion, const QString& prefix)
{
    if (prefix.isEmpty())
        throw CommandError{u"choose"_s, u"needs a sign"_s};
    std::vector<LibraryEditor::Entry> matches;
    for (auto& entry : companion.entries()) {
        if (entry.sign == prefix)
            return entry;
        if (entry.sign.startsWith(prefix))
            matches.push_back(std::move(entry));
    }
    if (matches.empty())
        throw CommandError{prefix, u"no video of this sign in the library"_s};
    if (matches.size() > 1) {
        throw CommandError{prefix, u"%1 videos' signs begin like this"_s.arg(matches.size())};
    }
    return matches.front();
}

} // namespace

ExitStatus CommandHandlers::list(Companion& companion, const Arguments& arguments)
{
    const auto entries = companion.entries();
    const auto chosen = companion.preferences().playingVideoSign();
    if (arguments.isJson) {
        QJsonArray rows;
        for (const auto& entry : entries) {
            rows.append(QJsonObject{{"sign", entry.sign},
                {"title", entry.title},
                {"bytes", entry.bytes},
                {"seconds", entry.seconds},
                {"width", entry.width},
                {"height", entry.height},
                {"path", Output::pathText(entry.url)},
                {"chosen", entry.sign == chosen}});
        }
        Output::print(QJsonDocument(rows));
        return ExitStatus::Done;
    }
    qsizetype titleWidth = 0;
    for (const auto& entry : entries)
        titleWidth = std::max(titleWidth, std::min<qsizetype>(32, entry.title.size()));
    for (const auto& entry : entries) {
        Output::print(u"%1 %2  %3  %4  %5  %6"_s.arg(entry.sign == chosen ? u"*" : u" ",
            entry.sign,
            entry.title.left(titleWidth).leftJustified(titleWidth),
            Output::sizeText(entry.bytes).rightJustified(9),
            Output::lengthText(entry.seconds).rightJustified(6),
            Output::pathText(entry.url)));
    }
    return ExitStatus::Done;
}

ExitStatus CommandHandlers::choose(Companion& companion, const Arguments& arguments)
{
    const auto entry = entryOfPrefix(companion, arguments.words.constFirst());
    if (!videoFileExists(entry.url)) {
        Output::printError(Output::pathText(entry.url),
            u"the file is gone; a running helper drops it from the library"_s);
    }
    auto& preferences = companion.preferences();
    const bool wasChosen = preferences.playingVideoSign() == entry.sign;
    preferences.setPlayingVideoSign(entry.sign);
    // A running helper does the same for a new sign, but not for the one that it has, and one
    // that starts later does what it finds.
    if (!preferences.isOpenPlayer())
        preferences.setIsOpenPlayer(true);
    if (!preferences.isPlaying())
        preferences.setIsPlaying(true);
    companion.storePreferences();
    // A helper that has nothing to play looks again. A sign that it knows already tells it nothing.
    const bool wasLeftOut = OpeningRecord::shared().forgive(entry.sign);
    if (wasLeftOut || wasChosen)
        Companion::announceLibrary();
    return ExitStatus::Done;
}
