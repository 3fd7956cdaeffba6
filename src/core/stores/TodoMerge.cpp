#include <algorithm>
#include <iterator>
#include <list>
#include <map>
#include <set>
#include <utility>

#include "core/stores/TodoFile.h"

namespace sunpane {
namespace {

using ById = std::map<Uuid, const Todo*>;

int group(const Todo& todo) {
    if (todo.done) return 2;
    return todo.isPrio() ? 0 : 1;
}

ById byId(const std::vector<Todo>& todos) {
    ById index;
    for (const Todo& todo : todos)
        index.emplace(todo.id, &todo);
    return index;
}

const Todo* find(const ById& index, const Uuid& id) {
    const auto found = index.find(id);
    return found == index.end() ? nullptr : found->second;
}

template <class Value>
const Value& changed(const Value& base, const Value& ours, const Value& theirs) {
    return ours == base ? theirs : ours;
}

Todo mergeFields(const Todo& base, const Todo& ours, const Todo& theirs) {
    // When it was done goes with whether it is done.
    const Todo& doneSide = ours.done == base.done && ours.doneAt == base.doneAt ? theirs : ours;
    const Todo& reminderSide = ours.remindAt == base.remindAt && ours.remindRepeat == base.remindRepeat ? theirs : ours;
    return {ours.id,
            changed(base.text, ours.text, theirs.text),
            changed(base.tag, ours.tag, theirs.tag),
            doneSide.done,
            doneSide.doneAt,
            changed(base.createdAt, ours.createdAt, theirs.createdAt),
            changed(base.prio, ours.prio, theirs.prio),
            changed(base.sourceItemKey, ours.sourceItemKey, theirs.sourceItemKey),
            reminderSide.remindAt,
            reminderSide.remindRepeat,
            changed(base.eventID, ours.eventID, theirs.eventID),
            changed(base.source, ours.source, theirs.source)};
}

/// What becomes of single todos.
class Verdicts {
public:
    Verdicts(const TodoState& base, const TodoState& ours, const TodoState& theirs)
        : base_(byId(base.todos)), ours_(byId(ours.todos)), theirs_(byId(theirs.todos)) {}

    /// Absent when the todo was removed.
    std::optional<Todo> operator()(const Uuid& id) const {
        const Todo* base = find(base_, id);
        const Todo* ours = find(ours_, id);
        const Todo* theirs = find(theirs_, id);
        if (ours != nullptr && theirs != nullptr) return base == nullptr ? *ours : mergeFields(*base, *ours, *theirs);
        const Todo* left = ours != nullptr ? ours : theirs;
        if (left == nullptr || (base != nullptr && *left == *base)) return std::nullopt;
        return *left;
    }

    /// The ids that all three have, in the order of `todos`.
    std::vector<Uuid> commonOrder(const std::vector<Todo>& todos) const {
        std::vector<Uuid> order;
        for (const Todo& todo : todos) {
            if (find(base_, todo.id) && find(ours_, todo.id) && find(theirs_, todo.id)) order.push_back(todo.id);
        }
        return order;
    }

private:
    ById base_;
    ById ours_;
    ById theirs_;
};

std::vector<std::string> mergeDismissed(const TodoState& base, const TodoState& ours, const TodoState& theirs) {
    const std::set<std::string> before(base.dismissed.begin(), base.dismissed.end());
    const std::set<std::string> mine(ours.dismissed.begin(), ours.dismissed.end());
    std::vector<std::string> merged = theirs.dismissed;
    std::erase_if(merged, [&](const std::string& key) { return before.contains(key) && !mine.contains(key); });
    for (const std::string& key : ours.dismissed) {
        if (before.contains(key)) continue;
        std::erase(merged, key);
        merged.push_back(key);
    }
    return merged;
}

}  // namespace

void partition(std::vector<Todo>& todos) {
    const auto inOrder = [](const Todo& a, const Todo& b) { return group(a) < group(b); };
    if (!std::is_sorted(todos.begin(), todos.end(), inOrder)) {
        std::stable_sort(todos.begin(), todos.end(), inOrder);
    }
}

void moveIntoGroup(std::vector<Todo>& todos, std::size_t index) {
    const int own = group(todos[index]);
    const auto at = todos.begin() + static_cast<std::ptrdiff_t>(index);
    const auto before = std::partition_point(todos.begin(), at, [&](const Todo& t) { return group(t) <= own; });
    const auto after = std::partition_point(at + 1, todos.end(), [&](const Todo& t) { return group(t) < own; });
    Todo moved = std::move(*at);
    if (before != at) {
        std::move_backward(before, at, at + 1);
        *before = std::move(moved);
    } else {
        std::move(at + 1, after, at);
        *(after - 1) = std::move(moved);
    }
}

TodoState mergeTodos(const TodoState& base, const TodoState& ours, const TodoState& theirs) {
    const Verdicts verdict(base, ours, theirs);
    const bool weReordered = verdict.commonOrder(ours.todos) != verdict.commonOrder(base.todos);
    const auto& leading = weReordered ? ours.todos : theirs.todos;
    const auto& following = weReordered ? theirs.todos : ours.todos;

    std::list<Todo> merged;
    std::map<Uuid, std::list<Todo>::iterator> places;
    for (const Todo& todo : leading) {
        auto kept = places.contains(todo.id) ? std::nullopt : verdict(todo.id);
        if (kept) places.emplace(todo.id, merged.insert(merged.end(), std::move(*kept)));
    }
    // What only the other side has goes before what follows it there.
    auto next = merged.end();
    for (auto todo = following.rbegin(); todo != following.rend(); ++todo) {
        if (const auto place = places.find(todo->id); place != places.end()) {
            next = place->second;
        } else if (auto kept = verdict(todo->id)) {
            next = merged.insert(next, std::move(*kept));
            places.emplace(todo->id, next);
        }
    }

    TodoState state{{std::make_move_iterator(merged.begin()), std::make_move_iterator(merged.end())},
                    changed(base.lastImportDay, ours.lastImportDay, theirs.lastImportDay),
                    mergeDismissed(base, ours, theirs)};
    partition(state.todos);
    return state;
}

}  // namespace sunpane
