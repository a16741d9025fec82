#pragma once

#include <optional>
#include <string_view>
#include <vector>

/// Answers what can be asked for on the command line, program name first, and needs no display.
/// Returns the exit status if the program is to end; otherwise it is to run.
std::optional<int> answerCommandLine(const std::vector<std::string_view>& arguments);
