#include "cli/StoreSession.h"

#include <ostream>
#include <utility>

#include "base/Text.h"
#include "base/Uuid.h"
#include "cli/TerminalText.h"
#include "core/briefing/FolderBriefingProvider.h"

namespace sunpane::cli {
namespace {

ExitCode tellUnwritten(const std::string& folder, ExitCode code, const std::string& consequence,
                       Environment& environment) {
    environment.err << "dawnlyctl: " << escapedName(folder) << " cannot be written now; " << consequence << '\n';
    return code;
}

ExitCode tellKept(const std::string& folder, Environment& environment) {
    return tellUnwritten(folder, failure, "the change is kept and will be written later", environment);
}

// The program takes another folder up for the briefings at once, for what it keeps itself at its next start.
void tellIfElsewhere(const ProgramAnswer& reply, const StoreArguments& arguments, const Command& command,
                     Environment& environment) {
    const bool isElsewhere = reply.reach == ProgramAnswer::Reach::answered &&
                             reply.answer.outcome == StoreChangeAnswer::Outcome::otherFolder;
    if (!isElsewhere || arguments.isFolderNamed) return;
    environment.err
        << "dawnlyctl " << command.name
        << ": dawnly keeps its todos and flags in its old folder until its next start; this is about those in "
        << escapedName(arguments.folder) << '\n';
}

}  // namespace

StoreSession::StoreSession(Environment& environment, const std::string& folder)
    : environment_(environment), folder_(folder) {
    files_ =
        std::make_unique<StoreFiles>(StoreFiles::Ports{*environment.files, environment.cloudFiles, environment.clock,
                                                       loop_, environment.queues, environment.wait},
                                     environment.stateFolder);
}

// The stores go before what they write with.
StoreSession::~StoreSession() {
    todos_.reset();
    flags_.reset();
    files_.reset();
}

TodoStore& StoreSession::todos() {
    if (!todos_) {
        todos_ = std::make_unique<TodoStore>(*files_, folder_);
        todos_->onPrioChanged = [this](const Todo& todo) {
            if (todo.sourceItemKey) flags().setPrio(*todo.sourceItemKey, todo.text, todo.isPrio());
        };
    }
    return *todos_;
}

ItemFlagStore& StoreSession::flags() {
    if (!flags_) {
        flags_ = std::make_unique<ItemFlagStore>(*files_, folder_, ItemFlagStore::FeedbackAtStart::kept);
    }
    return *flags_;
}

ExitCode StoreSession::finish() {
    const auto unwritten = [this] { return (todos_ && todos_->hasUnwritten()) || (flags_ && flags_->hasUnwritten()); };
    files_->drain();
    for (int round = 0; round < maximumRounds && unwritten(); ++round) {
        loop_.runPosted();
        files_->drain();
    }
    if (!unwritten()) return success;
    if (!(todos_ && todos_->hasUnwritten()) && !flags_->hasUnwrittenFlags()) {
        environment_.err << "dawnlyctl: " << escapedName(pathInside(folder_, ItemFlagStore::feedbackName))
                         << " cannot be written now; everything else is written, and it follows with the next change "
                            "of a flag or start of dawnly\n";
        return failure;
    }
    const bool isSafe = (!todos_ || todos_->isSafe()) && (!flags_ || flags_->isSafe());
    if (isSafe) return tellKept(folder_, environment_);
    const std::string consequence =
        "neither can " + escapedName(environment_.stateFolder) + ", which would keep the change: it is lost";
    return tellUnwritten(folder_, unsaved, consequence, environment_);
}

std::string StoreSession::feedback() const {
    constexpr std::size_t maximumBytes = std::size_t{64} << 20;
    return environment_.files->read(pathInside(folder_, ItemFlagStore::feedbackName), maximumBytes).bytes;
}

std::optional<StoreChangeAnswer> askProgram(StoreChange change, const StoreArguments& arguments, const Command& command,
                                            Environment& environment) {
    if (!environment.askProgram) return std::nullopt;
    change.folder = environment.files->canonicalPath(arguments.folder);
    change.id = text::toValidUtf8(change.id);
    change.text = text::toValidUtf8(change.text);
    change.expires = environment.clock.now() + programPatience;
    const ProgramAnswer reply = environment.askProgram(change);
    tellIfElsewhere(reply, arguments, command, environment);
    if (reply.reach == ProgramAnswer::Reach::silent) {
        environment.err << "dawnlyctl " << command.name
                        << ": dawnly runs but does not answer; the change is made without it\n";
    }
    using Outcome = StoreChangeAnswer::Outcome;
    const Outcome outcome = reply.answer.outcome;
    const bool isTaken = reply.reach == ProgramAnswer::Reach::answered &&
                         (outcome == Outcome::written || outcome == Outcome::kept || outcome == Outcome::unsaved);
    return isTaken ? std::optional(reply.answer) : std::nullopt;
}

void tellOtherFolder(const StoreArguments& arguments, const Command& command, Environment& environment) {
    if (!environment.askProgram || arguments.isFolderNamed) return;
    // No todo has this id: the program changes nothing, and says so unless the folder is not its own.
    const StoreChange nothing{StoreChange::Subject::todo,
                              environment.files->canonicalPath(arguments.folder),
                              "done",
                              Uuid::random().toString(),
                              {},
                              environment.clock.now() + folderPatience};
    tellIfElsewhere(environment.askProgram(nothing), arguments, command, environment);
}

ExitCode exitCodeOf(const StoreChangeAnswer& answer, const std::string& folder, Environment& environment) {
    if (answer.outcome == StoreChangeAnswer::Outcome::written) return success;
    if (answer.outcome == StoreChangeAnswer::Outcome::kept) return tellKept(folder, environment);
    return tellUnwritten(folder, unsaved, "the change is in dawnly's memory only, until there is room", environment);
}

std::optional<StoreArguments> parseStoreArguments(const Command& command, Arguments arguments,
                                                  Environment& environment) {
    StoreArguments parsed;
    bool onlyWords = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (onlyWords || !argument.starts_with("--")) {
            parsed.words.push_back(argument);
        } else if (argument == "--") {
            onlyWords = true;
        } else if (argument == "--json") {
            parsed.asJson = true;
        } else if (argument == "--folder" && i + 1 < arguments.size()) {
            parsed.folder = arguments[++i];
            parsed.isFolderNamed = true;
        } else {
            usageError(command, "unknown or incomplete option " + escapedName(argument), environment);
            return std::nullopt;
        }
    }
    if (parsed.folder.empty()) {
        parsed.isFolderNamed = false;
        parsed.folder = FolderBriefingProvider::currentDirectory(environment.defaults);
    }
    return parsed;
}

bool isFolderThere(const StoreArguments& arguments, const Command& command, Environment& environment) {
    if (!arguments.isFolderNamed || environment.files->exists(arguments.folder)) return true;
    environment.err << "dawnlyctl " << command.name << ": there is no folder " << escapedName(arguments.folder) << '\n';
    return false;
}

std::string joined(std::span<const std::string> words, std::size_t first) {
    std::string text;
    for (std::size_t i = first; i < words.size(); ++i) {
        if (i > first) text += ' ';
        text += words[i];
    }
    return text;
}

}  // namespace sunpane::cli
