#include "app/TodoActions.h"

#include <unicode/uchar.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "base/Text.h"

namespace sunpane::todo_actions {
namespace {

// A card that is dragged is far smaller; anything larger is somebody's text.
constexpr std::size_t longestPayload = 65536;

struct Card {
    std::string text;
    std::optional<std::string> key;
    bool prio = false;
};

std::optional<Card> readCard(std::string_view dropped) {
    if (dropped.size() > longestPayload) return std::nullopt;
    // Deep nesting costs the parser no stack: it keeps its own.
    const auto payload = nlohmann::json::parse(dropped, nullptr, false);
    if (!payload.is_object()) return std::nullopt;
    const auto mark = payload.find("dawnly");
    const auto text = payload.find("text");
    if (mark == payload.end() || *mark != true || text == payload.end() || !text->is_string()) return std::nullopt;
    Card card{text->get<std::string>(), std::nullopt, false};
    if (const auto key = payload.find("key"); key != payload.end() && key->is_string()) card.key = *key;
    if (const auto prio = payload.find("prio"); prio != payload.end()) card.prio = *prio == true;
    return card;
}

}  // namespace

void toggle(TodoStore& todos, const Uuid& id) {
    if (const auto index = todos.indexOf(id)) setDone(todos, id, !todos.todos()[*index].done);
}

void setDone(TodoStore& todos, const Uuid& id, bool done) {
    todos.setDone(id, done);
    // Looked up only now, since another program may have set the reminder a moment ago.
    const auto index = todos.indexOf(id);
    if (done && index && todos.todos()[*index].remindAt) todos.setReminder(id, std::nullopt, std::nullopt);
}

void removeWithUndo(TodoStore& todos, const Uuid& id, NotchUndo& undo) {
    const auto index = todos.indexOf(id);
    if (!index) return;
    undo.push([&todos, todo = todos.todos()[*index], place = *index] { todos.restore(todo, place); });
    todos.remove(id);
}

void renameWithUndo(TodoStore& todos, const Uuid& id, std::string_view text, NotchUndo& undo) {
    const auto textOf = [&todos](const Uuid& todo) -> std::optional<std::string> {
        const auto index = todos.indexOf(todo);
        return index ? std::optional(todos.todos()[*index].text) : std::nullopt;
    };
    const auto before = textOf(id);
    todos.rename(id, text);
    if (before && textOf(id) != before) undo.push([&todos, id, text = *before] { todos.rename(id, text); });
}

std::string oneLine(std::string_view text) {
    const std::string valid = text::toValidUtf8(text);
    std::string line;
    bool isVisible = false;
    for (std::size_t position = 0; position < valid.size();) {
        const std::size_t start = position;
        const char32_t codePoint = text::nextCodePoint(valid, position);
        const auto character = static_cast<UChar32>(codePoint);
        isVisible = isVisible || (u_isgraph(character) != 0 &&
                                  u_hasBinaryProperty(character, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) == 0);
        if (text::isNewline(codePoint)) {
            if (!line.ends_with(' ')) line += ' ';
        } else {
            line.append(valid, start, position - start);
        }
    }
    return isVisible ? line : "";
}

Outcome perform(TodoStore& todos, std::string_view verb, const Uuid& id, std::string_view text, NotchUndo& undo) {
    const bool needsText = verb == "add" || verb == "rename";
    const std::string line = needsText ? oneLine(text) : "";
    if (needsText && line.empty()) return Outcome::invalid;
    if (verb == "add") {
        todos.add(line, id);
        return Outcome::done;
    }
    if (!todos.indexOf(id)) return Outcome::noSuchTodo;
    if (verb == "done" || verb == "open") {
        setDone(todos, id, verb == "done");
    } else if (verb == "prio" || verb == "unprio") {
        todos.setPrio(id, verb == "prio");
    } else if (verb == "rename") {
        renameWithUndo(todos, id, line, undo);
    } else if (verb == "delete") {
        removeWithUndo(todos, id, undo);
    } else {
        return Outcome::invalid;
    }
    // Another program may have deleted it a moment ago, which the change was the first to notice.
    return verb == "delete" || todos.indexOf(id) ? Outcome::done : Outcome::noSuchTodo;
}

void addDropped(TodoStore& todos, std::string_view dropped) {
    if (const auto card = readCard(dropped)) {
        todos.addLinked(card->text, card->key, card->prio);
    } else {
        todos.addLinked(dropped, std::nullopt, false);
    }
}

}  // namespace sunpane::todo_actions
