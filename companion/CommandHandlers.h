#pragma once

#include "companion/Commands.h"
#include "companion/Companion.h"

#include <QStringList>

/// What follows a command's name.
struct Arguments {
    QStringList words;
    bool isJson = false;
};

/// One function a command. They print, and throw a `CommandError` where they cannot go on.
namespace CommandHandlers {

ExitStatus import(Companion& companion, const Arguments& arguments);
ExitStatus list(Companion& companion, const Arguments& arguments);
ExitStatus choose(Companion& companion, const Arguments& arguments);
ExitStatus status(Companion& companion, const Arguments& arguments);

} // namespace CommandHandlers
