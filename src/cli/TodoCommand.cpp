#include "cli/TodoCommand.h"

#include <charconv>
#include <optional>
#include <ostream>

#include "base/Dates.h"
#include "base/Text.h"
#include "cli/StoreSession.h"
#include "cli/TerminalText.h"

namespace sunpane::cli {
namespace {

void print(std::size_t index, const Todo& todo, Environment& environment) {
    std::ostream& out = environment.out;
    const std::string text = printable(todo.text);
    out << index + 1 << (todo.done ? " [x] " : " [ ] ") << (todo.isPrio() ? "! " : "")
        << bold(text, environment.outIsTerminal && todo.isPrio() && !todo.done);
    if (todo.tag) out << " (" << printable(*todo.tag) << ')';
    if (todo.remindAt) {
        out << " @ " << LocalCalendar(environment.clock).format(*todo.remindAt, "yyyy-MM-dd HH:mm");
        if (todo.remindRepeat) out << ' ' << printable(*todo.remindRepeat);
    }
    if (const auto note = todo.sourceNote()) out << " - " << *note;
    out << '\n';
}

void list(const TodoStore& store, bool asJson, Environment& environment) {
    const auto& todos = store.todos();
    if (!asJson) {
        for (std::size_t i = 0; i < todos.size(); ++i)
            print(i, todos[i], environment);
        return;
    }
    environment.out << '[';
    for (std::size_t i = 0; i < todos.size(); ++i)
        environment.out << (i > 0 ? "," : "") << encodeTodo(todos[i]);
    environment.out << "]\n";
}

void change(TodoStore& store, const std::string& verb, const Todo& todo, const std::string& text) {
    if (verb == "done" && !todo.done) store.toggle(todo.id);
    if (verb == "open" && todo.done) store.toggle(todo.id);
    if (verb == "prio") store.togglePrio(todo.id);
    if (verb == "rename") store.rename(todo.id, text);
    if (verb == "delete") store.remove(todo.id);
}

std::optional<std::size_t> toIndex(const std::string& word, std::size_t count) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size() || number == 0 || number > count) return std::nullopt;
    return number - 1;
}

bool isBlank(const std::string& text) {
    return text::trimWhitespaceAndNewlines(text::toValidUtf8(text)).empty();
}

}  // namespace

int runTodo(Arguments arguments, Environment& environment) {
    const auto parsed = parseStoreArguments(todoCommand, arguments, environment);
    if (!parsed) return failure;
    const auto& words = parsed->words;
    const std::string verb = words.empty() ? "" : words[0];
    const bool takesText = verb == "add" || verb == "rename";
    const bool takesNumber = verb == "done" || verb == "open" || verb == "prio" || verb == "rename" || verb == "delete";
    if (verb != "list" && !takesText && !takesNumber) {
        return usageError(todoCommand, words.empty() ? "what is to be done?" : "unknown word " + escapedName(verb),
                          environment);
    }
    const std::size_t leading = takesNumber ? 2 : 1;
    const std::string text = takesText ? joined(words, leading) : "";
    if (words.size() < leading || (!takesText && words.size() > leading)) {
        return usageError(todoCommand, verb + " takes " + (takesNumber ? "a number" : "nothing more"), environment);
    }
    if (takesText && isBlank(text)) return usageError(todoCommand, "a todo needs a text", environment);

    StoreSession session(environment, parsed->folder);
    TodoStore& store = session.todos();
    if (takesNumber) {
        const auto index = toIndex(words[1], store.todos().size());
        if (!index) {
            environment.err << "dawnlyctl todo: there is no todo " << escapedName(words[1]) << '\n';
            return negative;
        }
        const Todo todo = store.todos()[*index];
        change(store, verb, todo, text);
        if (const auto place = store.indexOf(todo.id)) print(*place, store.todos()[*place], environment);
    } else if (verb == "add") {
        store.add(text);
        std::size_t place = store.todos().size() - store.doneCount();
        print(place - 1, store.todos()[place - 1], environment);
    } else {
        list(store, parsed->asJson, environment);
    }
    return session.finish() ? success : failure;
}

}  // namespace sunpane::cli
