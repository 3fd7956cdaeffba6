#include "cli/FeedbackCommand.h"

#include <ostream>

#include "cli/StoreSession.h"

namespace sunpane::cli {

int runFeedback(Arguments arguments, Environment& environment) {
    const auto parsed = parseStoreArguments(feedbackCommand, arguments, environment);
    if (!parsed) return failure;
    if (!parsed->words.empty()) return usageError(feedbackCommand, "it takes no other words", environment);
    if (!isFolderThere(*parsed, feedbackCommand, environment)) return failure;
    tellOtherFolder(*parsed, feedbackCommand, environment);
    StoreSession session(environment, parsed->folder);
    session.flags().writeFeedback();
    if (const ExitCode code = session.finish(); code != success) return code;
    environment.out << session.feedback();
    return success;
}

}  // namespace sunpane::cli
