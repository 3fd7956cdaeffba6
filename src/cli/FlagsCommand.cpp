#include "cli/FlagsCommand.h"

#include <ostream>

#include "base/Dates.h"
#include "cli/StoreSession.h"
#include "cli/TerminalText.h"

namespace sunpane::cli {
namespace {

void print(const ItemFlagStore& store, Environment& environment) {
    const LocalCalendar calendar(environment.clock);
    const FlagState& state = store.state();
    const auto printCards = [&](const char* flag, const std::map<std::string, std::string>& cards) {
        for (const auto& [key, text] : cards) {
            environment.out << flag << (store.isHidden(key) ? " hidden" : "") << "  " << printable(key) << "  "
                            << printable(text);
            if (const auto date = state.dates.find(key); date != state.dates.end()) {
                environment.out << "  (" << calendar.format(date->second, "yyyy-MM-dd HH:mm") << ')';
            }
            environment.out << '\n';
        }
    };
    printCards("prio", state.prio);
    printCards("cleared", state.cleared);
}

}  // namespace

int runFlags(Arguments arguments, Environment& environment) {
    const auto parsed = parseStoreArguments(flagsCommand, arguments, environment);
    if (!parsed) return failure;
    const auto& words = parsed->words;
    const bool lists = words.size() == 1 && words[0] == "list";
    const bool flags = words.size() >= 3 && words[0] == "prio";
    const bool unflags = words.size() == 2 && words[0] == "unprio";
    if (!lists && !flags && !unflags) {
        return usageError(flagsCommand, "list, prio KEY TEXT or unprio KEY is needed", environment);
    }
    if (!flags && !isFolderThere(*parsed, flagsCommand, environment)) return failure;
    const std::string text = joined(words, 2);
    if (!lists) {
        const auto answer = askProgram({StoreChange::Subject::flag, {}, words[0], words[1], text, {}}, *parsed,
                                       flagsCommand, environment);
        if (answer) return exitCodeOf(*answer, parsed->folder, environment);
    }
    if (lists) tellOtherFolder(*parsed, flagsCommand, environment);
    StoreSession session(environment, parsed->folder);
    ItemFlagStore& store = session.flags();
    if (lists && parsed->asJson) environment.out << encodeFlags(store.state()) << '\n';
    if (lists && !parsed->asJson) print(store, environment);
    if (lists) return success;
    store.setPrio(words[1], text, flags);
    return session.finish();
}

}  // namespace sunpane::cli
