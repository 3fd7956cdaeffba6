#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "base/Instant.h"
#include "base/Subscription.h"

namespace sunpane {

/// A change to the todos or the flags that another program asks the running one for.
struct StoreChange {
    enum class Subject { todo, flag };
    Subject subject = Subject::todo;
    /// The briefings folder whose stores are meant, an absolute path.
    std::string folder;
    /// For a todo "add", "done", "open", "prio", "unprio", "rename" or "delete"; for a flag "prio" or "unprio".
    std::string verb;
    /// The todo's id, which for "add" is a new one that the asking program chose, or the card's key.
    std::string id;
    /// The todo's or the card's text, where the verb needs one.
    std::string text;
    /// Later than this nothing is changed: whoever asked does not wait any longer.
    Instant expires;

    friend bool operator==(const StoreChange&, const StoreChange&) = default;
};

/// What became of it.
struct StoreChangeAnswer {
    enum class Outcome {
        /// The files have it.
        written,
        /// The program has it and keeps it in its journal; the files cannot be written now.
        kept,
        /// Neither the files nor the journal can be written now: the change is only in the program's memory, which
        /// writes
        /// it as soon as there is room.
        unsaved,
        /// No todo has that id.
        noSuchTodo,
        /// The program shows another folder.
        otherFolder,
        /// The time was over.
        late,
        /// Not a verb, an id or a text.
        invalid,
    };
    Outcome outcome = Outcome::invalid;
    /// Where the todo is in the program's list, from 1, and the todo as `todos.json` has it; 0 and empty when it is not
    /// there.
    std::size_t number = 0;
    std::string todo;

    friend bool operator==(const StoreChangeAnswer&, const StoreChangeAnswer&) = default;
};

/// The outcomes' names on the bus, in their order.
inline constexpr std::array<std::string_view, 7> storeChangeOutcomes{"written",     "kept", "unsaved", "noSuchTodo",
                                                                     "otherFolder", "late", "invalid"};

/// Takes other programs' requests for changes. Main thread only.
class StoreRequests {
public:
    /// Answers a request, at any time but once; a reply that is dropped tells the asking program nothing.
    using Reply = std::function<void(const StoreChangeAnswer&)>;
    using Handler = std::function<void(const StoreChange&, Reply)>;

    virtual ~StoreRequests() = default;

    /// `handler` gets every request until the handle goes. There is one at a time.
    virtual Subscription serve(Handler handler) = 0;
};

}  // namespace sunpane
