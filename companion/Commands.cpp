#include "companion/Commands.h"

#include "companion/CommandHandlers.h"
#include "companion/Output.h"

#include <algorithm>
#include <array>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

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
        "add video files, or those directly in a folder",
        1,
        anyNumber,
        true,
        CommandHandlers::import},
    Command{"list", "", "the library; * marks the chosen video", 0, 0, true, CommandHandlers::list},
    Command{"choose",
        "SIGN",
        "play this one; the beginning of a sign will do",
        1,
        1,
        false,
        CommandHandlers::choose},
    Command{"status", "", "what the helper is set to", 0, 0, true, CommandHandlers::status},
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
    Output::printError(what, why);
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
        return wrongUsage(name, u"no such command"_s);

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
            return wrongUsage(word, u"no such option"_s);
    }
    if (parsed.words.size() < command->fewestOperands)
        return wrongUsage(name, u"needs %1"_s.arg(QLatin1String(command->operands)));
    if (parsed.words.size() > command->mostOperands)
        return wrongUsage(name, u"too many arguments"_s);

    try {
        Companion companion;
        return command->run(companion, parsed);
    } catch (const CommandError& error) {
        Output::printError(error.what, error.why);
        return ExitStatus::Failed;
    }
}
