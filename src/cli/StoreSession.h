#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/ManualRunLoop.h"
#include "cli/Command.h"
#include "core/stores/ItemFlagStore.h"
#include "core/stores/StoreFiles.h"
#include "core/stores/TodoStore.h"

namespace sunpane::cli {

/// The stores of one folder for the time of one command. What it changes is in the files when `finish` succeeds.
class StoreSession {
public:
    /// How often a change is merged with another program's before it is left to the next start.
    static constexpr int maximumRounds = 16;

    StoreSession(Environment& environment, const std::string& folder);
    ~StoreSession();

    /// Made at the first call.
    TodoStore& todos();
    /// The same. What the running program last told the agent about untouched cards and reminders stays told.
    ItemFlagStore& flags();

    /// Waits until everything is written. Otherwise tells on `err` that it is kept, and written by the next program
    /// that uses the folder (`failure`), or that there is no room to keep it and it is lost (`unsaved`).
    ExitCode finish();

    std::string feedback() const;

private:
    Environment& environment_;
    std::string folder_;
    ManualRunLoop loop_;
    std::unique_ptr<StoreFiles> files_;
    std::unique_ptr<TodoStore> todos_;
    std::unique_ptr<ItemFlagStore> flags_;
};

/// How a command ends after the program took its change.
ExitCode exitCodeOf(const StoreChangeAnswer& answer, const std::string& folder, Environment& environment);

/// The words behind a command's name, with its options taken out.
struct StoreArguments {
    std::string folder;
    /// Whether the user named the folder. Otherwise it is the one that is chosen now.
    bool isFolderNamed = false;
    bool asJson = false;
    std::vector<std::string> words;
};

/// Absent after a usage error, which was told.
std::optional<StoreArguments> parseStoreArguments(const Command& command, Arguments arguments,
                                                  Environment& environment);

/// Whether the folder of `arguments` is there, or is the chosen one, which every program makes. Otherwise tells on
/// `err` that it is not.
bool isFolderThere(const StoreArguments& arguments, const Command& command, Environment& environment);

/// The running program may take that long (s) over a change that it is asked for.
inline constexpr Seconds programPatience = 5;

/// The running program may take that long (s) to say whose folder it works in.
inline constexpr Seconds folderPatience = 0.5;

/// Asks the running program for a change in the folder of `arguments`. The change's folder and time are set here. Its
/// answer, if it took the change: `written`, `kept` or `unsaved`. Absent when the command has to make the change
/// itself, which does no harm where the program made it after all; tells on `err` when that is because the program
/// still works in another folder than the chosen one.
std::optional<StoreChangeAnswer> askProgram(StoreChange change, const StoreArguments& arguments, const Command& command,
                                            Environment& environment);

/// Tells the same for a command that asks for no change. Nothing when the user named the folder.
void tellOtherFolder(const StoreArguments& arguments, const Command& command, Environment& environment);

/// The words from `first` on as one text.
std::string joined(std::span<const std::string> words, std::size_t first);

}  // namespace sunpane::cli
