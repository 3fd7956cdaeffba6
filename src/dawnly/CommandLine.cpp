#include "dawnly/CommandLine.h"

#include <xcb/xcb.h>

#include <QLoggingCategory>
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string_view>

namespace sunpane {
namespace {

constexpr std::string_view verboseOption = "--verbose";

constexpr std::string_view help =
    "Usage: dawnly [OPTION]\n"
    "Shows the day's briefing in a panel under the notch. A copy that runs already is replaced.\n"
    "\n"
    "  --verbose      tell on standard error what happens\n"
    "  -h, --help     print this text\n"
    "  -v, --version  print the version\n"
    "\n"
    "Options of the Qt toolkit, such as -platform, are understood too. dawnlyctl speaks to the running program.\n";

// Why there is no display; empty when there is one. The toolkit would dump a core without one.
std::string_view missingDisplay() {
    if (std::getenv("QT_QPA_PLATFORM") != nullptr) return {};
    if (std::getenv("DISPLAY") == nullptr) return "DISPLAY is not set";
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(xcb_connect(nullptr, nullptr),
                                                                                  &xcb_disconnect);
    return xcb_connection_has_error(connection.get()) == 0 ? "" : "nothing answers at DISPLAY";
}

// Whether the toolkit is told what to show itself on, and need not find the X display that the environment names.
bool choosesPlatform(int argc, const char* const* argv) {
    return std::any_of(argv + 1, argv + argc, [](std::string_view argument) {
        if (argument.starts_with("--")) argument.remove_prefix(1);
        return argument.starts_with("-platform") || argument.starts_with("-display");
    });
}

// Without a display the toolkit takes out none of its own, which are written with one hyphen.
void tellForeignOptions(int argc, const char* const* argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (!argument.starts_with("--") || argument == verboseOption) continue;
        std::cerr << "dawnly: " << argument << " is no option of dawnly; see dawnly --help\n";
    }
}

}  // namespace

CommandLine readCommandLine(int argc, const char* const* argv) {
    CommandLine commandLine;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == verboseOption) commandLine.isVerbose = true;
        const bool asksForHelp = argument == "--help" || argument == "-h";
        const bool asksForVersion = argument == "--version" || argument == "-v";
        if (!asksForHelp && !asksForVersion) continue;
        std::cout << (asksForHelp ? help : "dawnly " SUNPANE_VERSION "\n") << std::flush;
        commandLine.exitCode = std::cout ? 0 : 1;
        break;
    }
    if (!commandLine.exitCode && !choosesPlatform(argc, argv)) {
        if (const auto reason = missingDisplay(); !reason.empty()) {
            tellForeignOptions(argc, argv);
            std::cerr << "dawnly: there is no X display: " << reason << ". A Wayland session needs XWayland.\n";
            commandLine.exitCode = EXIT_FAILURE;
        }
    }
    return commandLine;
}

bool areUnderstood(const QStringList& arguments) {
    for (const QString& argument : arguments) {
        if (argument == QLatin1String(verboseOption.data())) continue;
        std::cerr << "dawnly: there is no option " << argument.toStdString() << "; see dawnly --help\n";
        return false;
    }
    return true;
}

void chooseLogging(bool isVerbose) {
    qSetMessagePattern(QStringLiteral("dawnly: %{message}"));
    QLoggingCategory::setFilterRules(isVerbose ? QStringLiteral("*.debug=false\ndawnly.*=true")
                                               : QStringLiteral("*.debug=false\n*.info=false"));
}

}  // namespace sunpane
