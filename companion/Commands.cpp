#include "companion/Commands.h"

#include "companion/LibraryEditor.h"
#include "companion/ProgressBar.h"
#include "companion/VideoProbe.h"
#include "identity/AppInfo.h"
#include "library/LocalVideoDBManager.h"
#include "platform/DistributedNotificationCenter.h"
#include "platform/PreferencesSuite.h"
#include "platform/SessionInstance.h"
#include "preferences/Preferences.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QMimeDatabase>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace {

/// Ends a command; caught in `runCommand`.
struct CommandError {
    QString what;
    QString why;
};

void printError(const QString& what, const QString& why)
{
    std::fprintf(stderr, "tavelorctl: %s: %s\n", qUtf8Printable(what), qUtf8Printable(why));
}

void print(const QString& line)
{
    std::puts(qUtf8Printable(line));
}

void print(const QJsonDocument& document)
{
    std::fputs(document.toJson(QJsonDocument::Indented).constData(), stdout);
}

/// The settings and the library, opened when a command first asks for them.
class Companion {
public:
    Preferences& preferences()
    {
        if (m_preferences)
            return *m_preferences;
        const auto directory =
            AppInfo::shared().directoryUrl(SearchPathDirectory::Preferences).toLocalFile();
        m_suite = PreferencesSuite::open(AppInfo::applicationGroupIdentifier(), directory);
        if (!m_suite)
            throw CommandError{directory, QStringLiteral("the settings cannot be opened")};
        return m_preferences.emplace(*m_suite);
    }

    LibraryEditor& library()
    {
        if (m_library)
            return *m_library;
        auto database =
            LocalVideoDBManager::makeDatabase(AppInfo::shared(), Bundle::main(), stderr);
        const auto path = database.databasePath();
        m_library.emplace(std::move(database));
        if (m_library->failure())
            throw CommandError{path, *m_library->failure()};
        return *m_library;
    }

    std::vector<LibraryEditor::Entry> entries()
    {
        auto entries = library().entries();
        if (!entries)
            throw CommandError{QStringLiteral("library"), library().lastErrorMessage()};
        return std::move(*entries);
    }

    /// Tells the helper that the library has changed.
    static void announceLibrary()
    {
        DistributedNotificationCenter::defaultCenter().post(QStringLiteral("UpdateVideoList"));
    }

private:
    std::unique_ptr<PreferencesSuite> m_suite;
    std::optional<Preferences> m_preferences;
    std::optional<LibraryEditor> m_library;
};

struct Arguments {
    QStringList words;
    bool isJson = false;
};

QString lengthText(qint64 seconds)
{
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

QString sizeText(qint64 bytes)
{
    return QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

QString pathText(const QUrl& url)
{
    return url.isLocalFile() ? url.toLocalFile() : url.toString();
}

// -- import

/// A folder stands for the videos in it, in the order of their names.
QStringList videoFiles(const QStringList& paths)
{
    const QMimeDatabase types;
    QStringList files;
    for (const auto& path : paths) {
        if (!QFileInfo(path).isDir()) {
            files << path;
            continue;
        }
        const auto entries = QDir(path).entryInfoList(QDir::Files, QDir::Name);
        for (const auto& entry : entries) {
            const auto type = types.mimeTypeForFile(entry, QMimeDatabase::MatchExtension);
            if (type.name().startsWith(u"video/"))
                files << entry.filePath();
        }
    }
    return files;
}

QString outcomeText(LibraryEditor::Outcome outcome)
{
    switch (outcome) {
    case LibraryEditor::Outcome::Added:
        return QStringLiteral("added");
    case LibraryEditor::Outcome::AlreadyThere:
        return QStringLiteral("already there");
    case LibraryEditor::Outcome::Moved:
        return QStringLiteral("moved");
    case LibraryEditor::Outcome::Failed:
        break;
    }
    return QStringLiteral("failed");
}

ExitStatus import(Companion& companion, const Arguments& arguments)
{
    const auto files = videoFiles(arguments.words);
    if (files.isEmpty())
        throw CommandError{arguments.words.join(u' '), QStringLiteral("no videos in there")};
    qint64 total = 0;
    for (const auto& file : files)
        total += QFileInfo(file).size();

    auto& library = companion.library();
    ProgressBar progress(total);
    QJsonArray results;
    bool hasFailed = false;
    bool hasChanged = false;
    const auto report = [&](const QString& path, const QString& why) {
        hasFailed = true;
        progress.hide();
        printError(path, why);
        results.append(QJsonObject{{"path", path}, {"outcome", "failed"}, {"error", why}});
    };
    for (const auto& file : files) {
        const auto path = QFileInfo(file).absoluteFilePath();
        const auto probed = probeVideo(path, [&](qint64 bytes) { progress.advance(bytes); });
        if (const auto* failure = std::get_if<ProbeFailure>(&probed)) {
            report(file, failure->reason);
            continue;
        }
        const auto& facts = std::get<VideoFacts>(probed);
        const auto outcome = library.add(facts, QUrl::fromLocalFile(path));
        if (outcome == LibraryEditor::Outcome::Failed) {
            report(file, library.lastErrorMessage());
            continue;
        }
        hasChanged = hasChanged || outcome != LibraryEditor::Outcome::AlreadyThere;
        progress.hide();
        results.append(QJsonObject{{"path", path},
            {"outcome", outcomeText(outcome)},
            {"sign", facts.sign},
            {"title", facts.title}});
        if (!arguments.isJson) {
            print(QStringLiteral("%1  %2  %3 (%4×%5, %6)")
                      .arg(facts.sign,
                          outcomeText(outcome),
                          facts.title,
                          QString::number(facts.width),
                          QString::number(facts.height),
                          lengthText(facts.seconds)));
        }
    }
    if (arguments.isJson)
        print(QJsonDocument(results));
    if (hasChanged) {
        Companion::announceLibrary();
        companion.preferences().setAlreadyImportVideo(true);
    }
    return hasFailed ? ExitStatus::Failed : ExitStatus::Done;
}

// -- list, choose

ExitStatus list(Companion& companion, const Arguments& arguments)
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
                {"path", pathText(entry.url)},
                {"chosen", entry.sign == chosen}});
        }
        print(QJsonDocument(rows));
        return ExitStatus::Done;
    }
    qsizetype titleWidth = 0;
    for (const auto& entry : entries)
        titleWidth = std::max(titleWidth, std::min<qsizetype>(32, entry.title.size()));
    for (const auto& entry : entries) {
        print(QStringLiteral("%1 %2  %3  %4  %5  %6")
                  .arg(entry.sign == chosen ? u"*" : u" ",
                      entry.sign,
                      entry.title.left(titleWidth).leftJustified(titleWidth),
                      sizeText(entry.bytes).rightJustified(9),
                      lengthText(entry.seconds).rightJustified(6),
                      pathText(entry.url)));
    }
    return ExitStatus::Done;
}

/// The one entry whose sign is, or begins with, what the person typed.
LibraryEditor::Entry entryOfPrefix(Companion& companion, const QString& prefix)
{
    std::vector<LibraryEditor::Entry> matches;
    for (auto& entry : companion.entries()) {
        if (entry.sign == prefix)
            return entry;
        if (entry.sign.startsWith(prefix))
            matches.push_back(std::move(entry));
    }
    if (matches.empty())
        throw CommandError{prefix, QStringLiteral("no video of this sign in the library")};
    if (matches.size() > 1) {
        throw CommandError{
            prefix, QStringLiteral("%1 videos' signs begin like this").arg(matches.size())};
    }
    return matches.front();
}

ExitStatus choose(Companion& companion, const Arguments& arguments)
{
    const auto entry = entryOfPrefix(companion, arguments.words.constFirst());
    auto& preferences = companion.preferences();
    preferences.setPlayingVideoSign(entry.sign);
    // A running helper does the same for a new sign, but not for the one that it has, and one
    // that starts later does what it finds.
    if (!preferences.isOpenPlayer())
        preferences.setIsOpenPlayer(true);
    if (!preferences.isPlaying())
        preferences.setIsPlaying(true);
    return ExitStatus::Done;
}

// -- status

template <std::size_t Count>
QString nameOf(const std::array<const char*, Count>& names, qint64 rawValue)
{
    return rawValue >= 0 && rawValue < static_cast<qint64>(Count)
               ? QString::fromLatin1(names[static_cast<std::size_t>(rawValue)])
               : QString::number(rawValue);
}

constexpr std::array orderNames{"single", "list", "random"};         // as VideoPlayerPlayModel
constexpr std::array screenNames{"integration", "mirror", "single"}; // as VideoPlayerScreenType

ExitStatus status(Companion& companion, const Arguments& arguments)
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
    const auto volume = std::lround(100 * preferences.volume());

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
            object.insert("path", pathText(current->url));
        }
        print(QJsonDocument(object));
        return ExitStatus::Done;
    }
    const auto state = !preferences.isOpenPlayer() ? u"closed"
                       : preferences.isPlaying()   ? u"playing"
                                                   : u"paused";
    print(QStringLiteral("helper     %1").arg(isRunning ? u"running" : u"not running"));
    print(QStringLiteral("wallpaper  %1").arg(state));
    print(QStringLiteral("video      %1")
              .arg(current != entries.end() ? current->title : QStringLiteral("none chosen")));
    print(QStringLiteral("order      %1").arg(order));
    print(isSingleScreen
              ? QStringLiteral("screens    %1 %2").arg(screens).arg(preferences.screenIndex() + 1)
              : QStringLiteral("screens    %1").arg(screens));
    print(QStringLiteral("volume     %1%2").arg(volume).arg(preferences.mute() ? u", muted" : u""));
    print(QStringLiteral("library    %1 videos").arg(entries.size()));
    return ExitStatus::Done;
}

// -- the table of commands

struct Command {
    const char* name;
    const char* operands;
    const char* purpose;
    qsizetype fewestOperands;
    qsizetype mostOperands;
    bool takesJson;
    ExitStatus (*run)(Companion& companion, const Arguments& arguments);
};

constexpr qsizetype anyNumber = 1 << 20;
constexpr std::array commands{
    Command{"import",
        "PATH...",
        "add video files, or the videos in a folder",
        1,
        anyNumber,
        true,
        import},
    Command{"list", "", "the library; * marks the chosen video", 0, 0, true, list},
    Command{
        "choose", "SIGN", "play this one; the beginning of a sign will do", 1, 1, false, choose},
    Command{"status", "", "what the helper is set to", 0, 0, true, status},
};

void printUsage(FILE* stream)
{
    std::fputs("usage: tavelorctl COMMAND [--json]\n\n", stream);
    for (const auto& command : commands) {
        std::fprintf(stream, "  %-8s %-10s %s\n", command.name, command.operands, command.purpose);
    }
    std::fputs("\n--json prints for programs: import, list, status.\n", stream);
}

ExitStatus wrongUsage(const QString& what, const QString& why)
{
    printError(what, why);
    printUsage(stderr);
    return ExitStatus::WrongUsage;
}

} // namespace

ExitStatus runCommand(const QStringList& arguments)
{
    if (arguments.isEmpty()) {
        printUsage(stderr);
        return ExitStatus::WrongUsage;
    }
    const auto& name = arguments.constFirst();
    if (name == u"--help" || name == u"-h" || name == u"help") {
        printUsage(stdout);
        return ExitStatus::Done;
    }
    const auto command = std::ranges::find_if(
        commands, [&](const Command& candidate) { return name == QLatin1String(candidate.name); });
    if (command == commands.end())
        return wrongUsage(name, QStringLiteral("no such command"));

    Arguments parsed;
    bool areOptionsOver = false;
    for (const auto& word : arguments.mid(1)) {
        if (areOptionsOver || !word.startsWith(u"--"))
            parsed.words << word;
        else if (word == u"--")
            areOptionsOver = true;
        else if (word == u"--json" && command->takesJson)
            parsed.isJson = true;
        else
            return wrongUsage(word, QStringLiteral("no such option"));
    }
    if (parsed.words.size() < command->fewestOperands)
        return wrongUsage(name, QStringLiteral("needs %1").arg(QLatin1String(command->operands)));
    if (parsed.words.size() > command->mostOperands)
        return wrongUsage(name, QStringLiteral("too many arguments"));

    try {
        Companion companion;
        return command->run(companion, parsed);
    } catch (const CommandError& error) {
        printError(error.what, error.why);
        return ExitStatus::Failed;
    }
}
