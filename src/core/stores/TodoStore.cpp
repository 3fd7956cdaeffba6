#include "core/stores/TodoStore.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/Dates.h"
#include "base/Text.h"

namespace sunpane {
namespace {

std::string cleaned(std::string_view text) {
    return std::string(text::trimWhitespaceAndNewlines(text::toValidUtf8(text)));
}

std::optional<std::string> valid(const std::optional<std::string>& text) {
    return text ? std::optional(text::toValidUtf8(*text)) : std::nullopt;
}

std::set<std::string> textKeys(const std::vector<Todo>& todos) {
    std::set<std::string> keys;
    for (const Todo& todo : todos)
        keys.insert(textKey(todo.text));
    return keys;
}

}  // namespace

TodoStore::TodoStore(StoreFiles& files, const std::string& directory)
    : files_(files), clock_(files.ports().clock), file_(files, pathInside(directory, fileName), todoFormat()) {
    files_.ports().files.createFolders(directory);
    files_.ensureDownloaded(file_.path(), StoreFiles::downloadTimeout);
    file_.load([this](const StoreFile::Incoming& incoming) { return take(incoming); });
    file_.onConflict([this](const StoreFile::Incoming& incoming) {
        if (take(incoming)) save();
    });
    // A file that appears where there was none is newer than nothing.
    if (!file_.modificationTime()) lastKnownMtime_ = FileTime{};
    reloadTimer_ = files_.ports().runLoop.every(reloadInterval, [this] { reloadIfChangedExternally(); });
}

TodoStore::~TodoStore() = default;

std::size_t TodoStore::doneCount() const {
    return static_cast<std::size_t>(
        std::count_if(state_.todos.begin(), state_.todos.end(), [](const Todo& todo) { return todo.done; }));
}

std::optional<std::size_t> TodoStore::indexOf(const Uuid& id) const {
    const auto found =
        std::find_if(state_.todos.begin(), state_.todos.end(), [&](const Todo& todo) { return todo.id == id; });
    if (found == state_.todos.end()) return std::nullopt;
    return static_cast<std::size_t>(found - state_.todos.begin());
}

void TodoStore::add(std::string_view text, const std::optional<Uuid>& id) {
    std::string trimmed = cleaned(text);
    if (trimmed.empty()) return;
    adoptForeignChanges();
    if (id && indexOf(*id)) return;
    announceChange();
    forgetDismissed(textKey(trimmed));
    Todo todo = Todo::make(std::move(trimmed), clock_.now());
    if (id) todo.id = *id;
    todo.source = todo_source::you;
    insertOpen(std::move(todo));
    save();
}

void TodoStore::addLinked(std::string_view text, const std::optional<std::string>& sourceKey, bool prio) {
    std::string trimmed = cleaned(text);
    if (trimmed.empty()) return;
    adoptForeignChanges();
    announceChange();
    const std::string key = textKey(trimmed);
    const auto existing = std::find_if(state_.todos.begin(), state_.todos.end(),
                                       [&](const Todo& todo) { return textKey(todo.text) == key; });
    if (existing != state_.todos.end()) {
        if (sourceKey) existing->sourceItemKey = valid(sourceKey);
        if (prio && !existing->isPrio()) existing->prio = true;
    } else {
        forgetDismissed(key);
        Todo todo = Todo::make(std::move(trimmed), clock_.now());
        if (prio) todo.prio = true;
        todo.sourceItemKey = valid(sourceKey);
        todo.source = sourceKey ? todo_source::item : todo_source::you;
        insertOpen(std::move(todo));
    }
    partition(state_.todos);
    save();
}

void TodoStore::toggle(const Uuid& id) {
    adoptForeignChanges();
    if (const auto todo = find(id); todo != state_.todos.end()) flipDone(todo);
}

void TodoStore::togglePrio(const Uuid& id) {
    adoptForeignChanges();
    if (const auto todo = find(id); todo != state_.todos.end()) flipPrio(todo);
}

void TodoStore::setDone(const Uuid& id, bool done) {
    adoptForeignChanges();
    if (const auto todo = find(id); todo != state_.todos.end() && todo->done != done) flipDone(todo);
}

void TodoStore::setPrio(const Uuid& id, bool prio) {
    adoptForeignChanges();
    if (const auto todo = find(id); todo != state_.todos.end() && todo->isPrio() != prio) flipPrio(todo);
}

void TodoStore::flipDone(std::vector<Todo>::iterator todo) {
    announceChange();
    todo->done = !todo->done;
    todo->doneAt = todo->done ? std::optional(clock_.now()) : std::nullopt;
    moveIntoGroup(state_.todos, static_cast<std::size_t>(todo - state_.todos.begin()));
    save();
}

void TodoStore::flipPrio(std::vector<Todo>::iterator todo) {
    announceChange();
    todo->prio = !todo->isPrio();
    const Todo changed = *todo;
    moveIntoGroup(state_.todos, static_cast<std::size_t>(todo - state_.todos.begin()));
    save();
    if (onPrioChanged) onPrioChanged(changed);
}

void TodoStore::rename(const Uuid& id, std::string_view text) {
    std::string trimmed = cleaned(text);
    if (trimmed.empty()) return;
    adoptForeignChanges();
    const auto todo = find(id);
    if (todo == state_.todos.end() || todo->text == trimmed) return;
    announceChange();
    todo->text = std::move(trimmed);
    save();
}

void TodoStore::setReminder(const Uuid& id, std::optional<Instant> date, const std::optional<std::string>& repeatRule) {
    adoptForeignChanges();
    const auto todo = find(id);
    if (todo == state_.todos.end()) return;
    announceChange();
    todo->remindAt = date;
    todo->remindRepeat = date ? valid(repeatRule) : std::nullopt;
    save();
}

void TodoStore::setEventID(const std::optional<std::string>& eventID, const Uuid& id) {
    adoptForeignChanges();
    const auto todo = find(id);
    if (todo == state_.todos.end()) return;
    announceChange();
    todo->eventID = valid(eventID);
    save();
}

void TodoStore::move(const Uuid& id, std::ptrdiff_t index) {
    adoptForeignChanges();
    const auto todo = find(id);
    if (todo == state_.todos.end()) return;
    announceChange();
    Todo moved = std::move(*todo);
    state_.todos.erase(todo);
    const auto count = static_cast<std::ptrdiff_t>(state_.todos.size());
    state_.todos.insert(state_.todos.begin() + std::clamp<std::ptrdiff_t>(index, 0, count), std::move(moved));
    partition(state_.todos);
    save();
}

void TodoStore::remove(const Uuid& id) {
    adoptForeignChanges();
    const auto todo = find(id);
    if (todo != state_.todos.end()) {
        announceChange();
        const std::string key = textKey(todo->text);
        forgetDismissed(key);
        state_.dismissed.push_back(key);
        std::erase_if(state_.todos, [&](const Todo& candidate) { return candidate.id == id; });
    }
    save();
}

void TodoStore::restore(const Todo& todo, std::size_t index) {
    adoptForeignChanges();
    if (find(todo.id) != state_.todos.end()) return;
    announceChange();
    forgetDismissed(textKey(todo.text));
    const std::size_t place = std::min(index, state_.todos.size());
    state_.todos.insert(state_.todos.begin() + static_cast<std::ptrdiff_t>(place), todo);
    partition(state_.todos);
    save();
}

bool TodoStore::isDismissed(std::string_view text) const {
    const std::string key = textKey(text::toValidUtf8(text));
    return std::find(state_.dismissed.begin(), state_.dismissed.end(), key) != state_.dismissed.end();
}

void TodoStore::ingest(const Briefing& briefing) {
    adoptForeignChanges();
    bool changed = false;
    std::vector<Todo> todos = state_.todos;
    std::string importDay = state_.lastImportDay;
    const std::string day = LocalCalendar(clock_).dayString(briefing.date);
    if (day != importDay) {
        std::erase_if(todos, [](const Todo& todo) { return todo.done; });
        importDay = day;
        changed = true;
    }
    // Not extended while importing: a briefing that lists a task twice gets it twice.
    std::set<std::string> known = textKeys(todos);
    known.insert(state_.dismissed.begin(), state_.dismissed.end());
    const Instant now = clock_.now();
    for (const BriefingActionItem& item : briefing.actionItems()) {
        if (known.contains(textKey(item.text))) continue;
        Todo todo = Todo::make(item.text, now);
        todo.tag = item.tag;
        todo.done = item.done;
        if (item.done) todo.doneAt = now;
        todo.source = todo_source::brief;
        todos.push_back(std::move(todo));
        changed = true;
    }
    partition(todos);
    const bool listChanged = todos != state_.todos;
    if (!changed && !listChanged) return;
    if (listChanged) announceChange();
    state_.todos = std::move(todos);
    state_.lastImportDay = std::move(importDay);
    save();
}

void TodoStore::importCalendarTodos(const std::vector<std::string>& titles) {
    if (titles.empty()) return;
    adoptForeignChanges();
    std::set<std::string> known = textKeys(state_.todos);
    known.insert(state_.dismissed.begin(), state_.dismissed.end());
    std::vector<Todo> added;
    for (const std::string& title : titles) {
        std::string trimmed = cleaned(title);
        if (trimmed.empty() || known.contains(textKey(trimmed))) continue;
        added.push_back(Todo::make(std::move(trimmed), clock_.now()));
        added.back().source = todo_source::calendar;
    }
    if (added.empty()) return;
    announceChange();
    std::move(added.begin(), added.end(), std::back_inserter(state_.todos));
    partition(state_.todos);
    save();
}

std::vector<Todo>::iterator TodoStore::find(const Uuid& id) {
    return std::find_if(state_.todos.begin(), state_.todos.end(), [&](const Todo& todo) { return todo.id == id; });
}

void TodoStore::insertOpen(Todo todo) {
    const auto firstDone =
        std::find_if(state_.todos.begin(), state_.todos.end(), [](const Todo& candidate) { return candidate.done; });
    state_.todos.insert(firstDone, std::move(todo));
}

void TodoStore::forgetDismissed(const std::string& key) {
    std::erase(state_.dismissed, key);
}

bool TodoStore::take(const StoreFile::Incoming& incoming) {
    auto decoded = decodeTodos(incoming.content);
    if (!decoded) return false;
    if (incoming.mustMerge) {
        const auto base = incoming.base != nullptr ? decodeTodos(*incoming.base) : std::nullopt;
        *decoded = mergeTodos(base.value_or(TodoState{}), state_, *decoded);
    } else {
        partition(decoded->todos);
    }
    announceChange();
    state_ = std::move(*decoded);
    return true;
}

// A change here must build on what another program has written meanwhile, not replace it.
void TodoStore::adoptForeignChanges() {
    if (!file_.changedOnDisk()) return;
    file_.reload([this](const StoreFile::Incoming& incoming) { return take(incoming); });
}

void TodoStore::reloadIfChangedExternally() {
    const auto mtime = file_.modificationTime();
    if (!mtime) {
        if (file_.wentWithItsFolder()) save();
        return;
    }
    // The first look has no time to compare with, but something may have happened since the file was loaded.
    if (lastKnownMtime_ ? *mtime > *lastKnownMtime_ : file_.changedOnDisk()) {
        files_.ensureDownloaded(file_.path(), StoreFiles::downloadTimeout);
        announceChange();
        const auto outcome = file_.reload([this](const StoreFile::Incoming& incoming) { return take(incoming); });
        if (outcome == StoreFile::Reload::merged) save();
    }
    lastKnownMtime_ = mtime;
}

void TodoStore::save() {
    if (state_.dismissed.size() > maximumDismissed) {
        const auto excess = state_.dismissed.size() - maximumDismissed;
        state_.dismissed.erase(state_.dismissed.begin(),
                               state_.dismissed.begin() + static_cast<std::ptrdiff_t>(excess));
    }
    file_.writeAsync(encodeTodos(state_), [this] { lastKnownMtime_ = file_.knownTime(); });
}

}  // namespace sunpane
