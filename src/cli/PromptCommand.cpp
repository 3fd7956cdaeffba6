#include "cli/PromptCommand.h"

#include <ostream>
#include <sstream>
#include <string>

#include "base/Text.h"
#include "cli/FolderPath.h"
#include "cli/StoreSession.h"
#include "cli/TerminalText.h"
#include "onboarding/Prompts.h"

namespace sunpane::cli {

int runPrompt(Arguments arguments, Environment& environment) {
    const auto parsed = parseStoreArguments(promptCommand, arguments, environment);
    if (!parsed) return failure;
    const std::string which = parsed->words.size() == 1 ? parsed->words[0] : "";
    const std::string folder = absoluteFolder(parsed->folder);
    std::string prompt;
    if (which == "morning") prompt = prompts::morningTask(folder);
    if (which == "evening") prompt = prompts::eveningTask(folder);
    if (which == "delivery") prompt = prompts::deliveryBlock(folder);
    if (prompt.empty() || parsed->asJson) {
        return usageError(promptCommand, "morning, evening or delivery is needed", environment);
    }
    std::istringstream lines(text::toValidUtf8(prompt));
    for (std::string line; std::getline(lines, line);)
        environment.out << printable(line) << '\n';
    return success;
}

}  // namespace sunpane::cli
