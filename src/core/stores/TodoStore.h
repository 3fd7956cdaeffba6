#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Clock.h"
#include "base/Observable.h"
#include "base/RunLoop.h"
#include "core/briefing/Briefing.h"
#include "core/stores/StoreFile.h"
#include "core/stores/StoreFiles.h"
#include "core/stores/Todo.h"
#include "core/stores/TodoFile.h"

namespace sunpane {

/// The todo list, kept in `todos.json` beside the briefings.
///
/// One instance, owned by the view model; main thread only. Open priorities come first, then the other open todos,
/// then the done ones. Every change announces itself, takes effect, and is handed to the store queue for writing.
/// Changes that another program or a synced machine makes to the file are taken over within two seconds, or before
/// the next change here. Failures are silent and leave the last good state.
///
/// Texts that are not valid UTF-8 are repaired with U+FFFD. An operation on an id that is not in the list does
/// nothing, where it does not say otherwise.
class TodoStore : public Observable {
public:
    static constexpr const char* fileName = "todos.json";
    static constexpr Seconds reloadInterval = 2.0;
    /// How many deleted texts are remembered.
    static constexpr std::size_t maximumDismissed = 150;

    /// Creates `directory` if it is missing and loads the file; may block for `StoreFiles::downloadTimeout`.
    TodoStore(StoreFiles& files, const std::string& directory);
    ~TodoStore();

    const std::vector<Todo>& todos() const { return state_.todos; }
    const std::string& lastImportDay() const { return state_.lastImportDay; }
    /// Text keys of deleted todos, oldest first.
    const std::vector<std::string>& dismissed() const { return state_.dismissed; }
    const std::string& fileURL() const { return file_.path(); }
    /// Whether a change is not in the file yet.
    bool hasUnwritten() const { return file_.hasUnwritten(); }
    /// Whether all changes outlive this process, being in the file or in a journal.
    bool isSafe() const { return file_.isSafe(); }
    /// Runs `then` once all changes made so far are in the file, perhaps at once; not at all when the store or the
    /// handle goes first.
    [[nodiscard]] Subscription whenWritten(std::function<void()> then) { return file_.whenWritten(std::move(then)); }
    std::size_t doneCount() const;
    std::optional<std::size_t> indexOf(const Uuid& id) const;

    /// Called after a star was set or taken away, with the changed todo.
    std::function<void(const Todo&)> onPrioChanged;

    /// Adds what the user typed, below the open todos. A blank text adds nothing; a repeated one adds another todo.
    /// With an id that is in the list already nothing happens, so that whoever chooses the id may try again.
    void add(std::string_view text, const std::optional<Uuid>& id = std::nullopt);

    /// Adds a todo made from a briefing card, or, when one with the same text key is there already, links that one to
    /// the card and makes it a priority if asked.
    void addLinked(std::string_view text, const std::optional<std::string>& sourceKey, bool prio);

    void toggle(const Uuid& id);
    void togglePrio(const Uuid& id);
    /// Nothing happens when it is so already, even if another program made it so and this one has not seen it yet: who
    /// names what he wants must not get the opposite.
    void setDone(const Uuid& id, bool done);
    void setPrio(const Uuid& id, bool prio);
    void rename(const Uuid& id, std::string_view text);

    /// Sets the reminder, or with an absent date clears it together with its repeat rule. Notifying is the caller's
    /// business.
    void setReminder(const Uuid& id, std::optional<Instant> date, const std::optional<std::string>& repeatRule);
    void setEventID(const std::optional<std::string>& eventID, const Uuid& id);

    /// Moves to `index` (clamped), counted without the todo itself, as far as its group allows.
    void move(const Uuid& id, std::ptrdiff_t index);

    /// Removes the todo and remembers its text, so that imports do not bring it back. Saves for an unknown id too.
    void remove(const Uuid& id);

    /// Undoes a removal. Nothing happens when a todo with that id is there.
    void restore(const Todo& todo, std::size_t index);

    bool isDismissed(std::string_view text) const;

    /// Imports the action items of a briefing. One of another day than the last first clears the done todos away.
    void ingest(const Briefing& briefing);

    /// Imports the titles of today's calendar tasks.
    void importCalendarTodos(const std::vector<std::string>& titles);

private:
    std::vector<Todo>::iterator find(const Uuid& id);
    void flipDone(std::vector<Todo>::iterator todo);
    void flipPrio(std::vector<Todo>::iterator todo);
    void insertOpen(Todo todo);
    void forgetDismissed(const std::string& key);
    bool take(const StoreFile::Incoming& incoming);
    void adoptForeignChanges();
    void reloadIfChangedExternally();
    void save();

    StoreFiles& files_;
    const Clock& clock_;
    StoreFile file_;
    TodoState state_;
    std::optional<FileTime> lastKnownMtime_;
    Subscription reloadTimer_;
};

}  // namespace sunpane
