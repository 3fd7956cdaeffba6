#include "cli/TodoCommand.h"

#include <charconv>
#include <optional>
#include <ostream>

#include "app/TodoActions.h"
#include "base/Dates.h"
#include "base/Uuid.h"
#include "cli/StoreSession.h"
#include "cli/TerminalText.h"

namespace sunpane::cli {
namespace {

// `number` is its place in the list, from 1; 0 where the list does not have it yet.
void print(std::size_t number, const Todo& todo, Environment& environment) {
    std::ostream& out = environment.out;
    const std::string text = printable(todo.text);
    if (number > 0) out << number << ' ';
    out << (todo.done ? "[x] " : "[ ] ") << (todo.isPrio() ? "! " : "")
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
            print(i + 1, todos[i], environment);
        return;
    }
    environment.out << '[';
    for (std::size_t i = 0; i < todos.size(); ++i)
        environment.out << (i > 0 ? "," : "") << encodeTodo(todos[i]);
    environment.out << "]\n";
}

std::optional<std::size_t> toIndex(const std::string& word, std::size_t count) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size() || number == 0 || number > count) return std::nullopt;
    return number - 1;
}

struct Change {
    std::string verb;
    Uuid id;
    std::string text;
};

int noSuchTodo(const std::string& number, Environment& environment) {
    environment.err << "dawnlyctl todo: there is no todo " << escapedName(number) << '\n';
    return negative;
}

int showAnswer(const StoreChangeAnswer& answer, const std::string& folder, Environment& environment) {
    const auto shown = decodeTodos(R"({"lastImportDay":"","todos":[)" + answer.todo + "]}");
    // The program counts in its list, every other command in the file's.
    const bool isInFile = answer.outcome == StoreChangeAnswer::Outcome::written;
    if (shown && answer.number > 0 && !shown->todos.empty()) {
        print(isInFile ? answer.number : 0, shown->todos[0], environment);
    }
    return exitCodeOf(answer, folder, environment);
}

int makeChange(const Change& change, StoreSession& session, const std::string& number, Environment& environment) {
    TodoStore& store = session.todos();
    // Who takes back what a command did does so by another command.
    NotchUndo undo;
    const auto outcome = todo_actions::perform(store, change.verb, change.id, change.text, undo);
    if (outcome == todo_actions::Outcome::noSuchTodo) return noSuchTodo(number, environment);
    const ExitCode code = session.finish();
    const auto place = store.indexOf(change.id);
    if (place && code != unsaved) print(code == success ? *place + 1 : 0, store.todos()[*place], environment);
    return code;
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
    if (takesText && todo_actions::oneLine(text).empty())
        return usageError(todoCommand, "a todo needs a text", environment);

    if (verb != "add" && !isFolderThere(*parsed, todoCommand, environment)) return failure;
    StoreSession session(environment, parsed->folder);
    if (verb == "list") {
        tellOtherFolder(*parsed, todoCommand, environment);
        list(session.todos(), parsed->asJson, environment);
        return session.finish();
    }
    Change change{verb, Uuid::random(), text};
    if (takesNumber) {
        const auto& todos = session.todos().todos();
        const auto index = toIndex(words[1], todos.size());
        if (!index) {
            tellOtherFolder(*parsed, todoCommand, environment);
            return noSuchTodo(words[1], environment);
        }
        change.id = todos[*index].id;
        if (verb == "prio" && todos[*index].isPrio()) change.verb = "unprio";
    }
    const auto answer = askProgram({StoreChange::Subject::todo, {}, change.verb, change.id.toString(), change.text, {}},
                                   *parsed, todoCommand, environment);
    if (answer) return showAnswer(*answer, parsed->folder, environment);
    return makeChange(change, session, words[takesNumber ? 1 : 0], environment);
}

}  // namespace sunpane::cli
