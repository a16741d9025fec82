#include "app/CommandLine.h"

#include "identity/AppInfo.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr auto help = R"(Usage: tavelorhelper [--help | --version]

Plays videos as the desktop wallpaper until it is told to quit, by its menu or by a signal.
tavelorctl chooses the videos.

  -h, --help      print this and end
  -v, --version   print the version and end
)";
constexpr int usageError = 2;

} // namespace

std::optional<int> answerCommandLine(const std::vector<std::string_view>& arguments)
{
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const auto argument = arguments[i];
        if (argument == "-h" || argument == "--help") {
            std::fputs(help, stdout);
            return EXIT_SUCCESS;
        }
        if (argument == "-v" || argument == "--version") {
            std::printf("TavelorHelper %s\n", qUtf8Printable(AppInfo::shared().displayVersion()));
            return EXIT_SUCCESS;
        }
        if (argument == "-session" && i + 1 < arguments.size()) {
            ++i; // how session managers start programs again; the toolkit reads its value
            continue;
        }
        std::fprintf(stderr,
            "tavelorhelper: unknown argument \"%.*s\"; see tavelorhelper --help\n",
            static_cast<int>(argument.size()),
            argument.data());
        return usageError;
    }
    return std::nullopt;
}
