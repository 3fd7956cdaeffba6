#include "app/CardActions.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "base/Text.h"

namespace sunpane::card_actions {

std::string copyText(const BriefingItem& item) {
    return text::replacingAll(text::replacingAll(item.markdown(), "**", ""), "`", "");
}

std::string dragPayload(const BriefingItem& item, const ItemFlagStore& flags) {
    const nlohmann::ordered_json payload = {{"dawnly", true},
                                            {"text", item.suggestedTodoText()},
                                            {"key", std::string(item.id())},
                                            {"prio", flags.isPrio(item.id())}};
    return payload.dump();
}

void addToTodos(const BriefingItem& item, TodoStore& todos, const ItemFlagStore& flags) {
    todos.addLinked(item.suggestedTodoText(), std::string(item.id()), flags.isPrio(item.id()));
}

void setReminder(const BriefingItem& item, Instant time, const std::optional<std::string>& repeatRule, TodoStore& todos,
                 const ItemFlagStore& flags) {
    addToTodos(item, todos, flags);
    const auto& list = todos.todos();
    const auto todo = std::find_if(list.begin(), list.end(), [&](const Todo& candidate) {
        return candidate.sourceItemKey == item.id() && !candidate.done;
    });
    if (todo == list.end()) return;
    const Uuid id = todo->id;
    todos.setReminder(id, time, repeatRule);
}

void flagWithUndo(const std::weak_ptr<ItemFlagStore>& flags, const std::function<void()>& operation, NotchUndo& undo) {
    const auto store = flags.lock();
    const FlagChange change = store ? store->during(operation) : FlagChange{};
    undo.push([flags, change] {
        if (const auto kept = flags.lock()) kept->takeBack(change);
    });
}

}  // namespace sunpane::card_actions
