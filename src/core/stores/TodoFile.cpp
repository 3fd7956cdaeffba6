#include "core/stores/TodoFile.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdint>
#include <set>
#include <utility>
#include <vector>

#include "core/stores/Json.h"

namespace sunpane {
namespace {

constexpr std::size_t usualTodoBytes = 160;

void appendMember(std::string& out, std::string_view key, std::string_view value) {
    out += key;
    json::appendString(out, value);
}

void appendMember(std::string& out, std::string_view key, bool value) {
    out += key;
    out += value ? "true" : "false";
}

void appendMember(std::string& out, std::string_view key, Instant value) {
    out += key;
    json::appendNumber(out, value.sinceReference);
}

template <class Value>
void appendMember(std::string& out, std::string_view key, const std::optional<Value>& value) {
    if (value) appendMember(out, key, *value);
}

void appendTodo(std::string& out, const Todo& todo) {
    appendMember(out, R"({"id":)", std::string_view(todo.id.toString()));
    appendMember(out, R"(,"text":)", std::string_view(todo.text));
    appendMember(out, R"(,"tag":)", todo.tag);
    appendMember(out, R"(,"done":)", todo.done);
    appendMember(out, R"(,"doneAt":)", todo.doneAt);
    appendMember(out, R"(,"createdAt":)", todo.createdAt);
    appendMember(out, R"(,"prio":)", todo.prio);
    appendMember(out, R"(,"sourceItemKey":)", todo.sourceItemKey);
    appendMember(out, R"(,"remindAt":)", todo.remindAt);
    appendMember(out, R"(,"remindRepeat":)", todo.remindRepeat);
    appendMember(out, R"(,"eventID":)", todo.eventID);
    appendMember(out, R"(,"source":)", todo.source);
    out += '}';
}

// Todos that have one id each can be changed and merged singly. The same file always gives the same ids, so that what
// was read twice is not taken for two.
void tellApart(std::vector<Todo>& todos) {
    std::vector<Uuid> sorted;
    sorted.reserve(todos.size());
    for (const Todo& todo : todos)
        sorted.push_back(todo.id);
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end()) return;
    std::set<Uuid> taken(sorted.begin(), sorted.end());
    std::set<Uuid> met;
    for (Todo& todo : todos) {
        if (met.insert(todo.id).second) continue;
        while (!taken.insert(todo.id).second)
            todo.id = todo.id.next();
    }
}

/// Reads the file into records as its events arrive, without a tree in between.
class TodoFileReader : public json::Reader {
public:
    /// A file is not trusted with more memory than this many todos before it is read.
    static constexpr std::size_t maximumReserved = 16384;

    std::optional<TodoState> result(std::string_view file) {
        state_.todos.reserve(std::min(file.size() / usualTodoBytes, maximumReserved));
        if (!read(file) || !hasTodos_ || !hasImportDay_ || place_ != Place::end) return std::nullopt;
        tellApart(state_.todos);
        return std::move(state_);
    }

private:
    enum class Place { start, file, fileTodos, fileImportDay, fileDismissed, todos, todo, dismissed, end };
    enum class Field {
        id,
        text,
        tag,
        done,
        doneAt,
        createdAt,
        prio,
        sourceItemKey,
        remindAt,
        remindRepeat,
        eventID,
        source,
        none
    };
    static constexpr std::array<std::string_view, 12> fieldNames{"id",       "text",         "tag",     "done",
                                                                 "doneAt",   "createdAt",    "prio",    "sourceItemKey",
                                                                 "remindAt", "remindRepeat", "eventID", "source"};

    bool onStartObject() override {
        if (place_ == Place::start) {
            place_ = Place::file;
            return true;
        }
        if (place_ != Place::todos) return false;
        place_ = Place::todo;
        field_ = Field::none;
        seen_ = 0;
        state_.todos.push_back(blank_);
        return true;
    }

    bool onEndObject() override {
        if (place_ == Place::file) {
            place_ = Place::end;
            return true;
        }
        const unsigned required = bit(Field::id) | bit(Field::text) | bit(Field::done) | bit(Field::createdAt);
        if (place_ != Place::todo || (seen_ & required) != required) return false;
        place_ = Place::todos;
        return true;
    }

    bool onStartArray() override {
        if (place_ == Place::fileTodos) {
            hasTodos_ = true;
            state_.todos.clear();
            place_ = Place::todos;
            return true;
        }
        if (place_ != Place::fileDismissed) return false;
        state_.dismissed.clear();
        place_ = Place::dismissed;
        return true;
    }

    bool onEndArray() override {
        if (place_ != Place::todos && place_ != Place::dismissed) return false;
        place_ = Place::file;
        return true;
    }

    bool onKey(std::string& name) override {
        if (place_ == Place::todo) return onTodoKey(name);
        if (name == "todos") {
            place_ = Place::fileTodos;
        } else if (name == "lastImportDay") {
            place_ = Place::fileImportDay;
        } else if (name == "dismissed") {
            place_ = Place::fileDismissed;
        } else {
            return skipValue();
        }
        return true;
    }

    Todo& todo() { return state_.todos.back(); }

    bool onTodoKey(const std::string& name) {
        // Members mostly come in the order in which we write them.
        const auto expected = fieldNames.begin() + (field_ == Field::none ? 0 : static_cast<int>(field_) + 1);
        auto found = std::find(expected, fieldNames.end(), name);
        if (found == fieldNames.end()) found = std::find(fieldNames.begin(), fieldNames.end(), name);
        field_ = static_cast<Field>(found - fieldNames.begin());
        return field_ == Field::none ? skipValue() : true;
    }

    // Values are copied: what is moved out of the library's buffer it would have to grow anew for the next value.
    bool onString(std::string& value) override {
        switch (place_) {
            case Place::fileImportDay:
                hasImportDay_ = true;
                state_.lastImportDay = value;
                place_ = Place::file;
                return true;
            case Place::dismissed:
                state_.dismissed.push_back(value);
                return true;
            case Place::todo:
                return onTodoString(value);
            default:
                return false;
        }
    }

    bool onTodoString(const std::string& value) {
        mark();
        switch (field_) {
            case Field::id:
                if (const auto id = Uuid::parse(value)) {
                    todo().id = *id;
                    return true;
                }
                return false;
            case Field::text:
                todo().text = value;
                return true;
            case Field::tag:
                todo().tag = value;
                return true;
            case Field::sourceItemKey:
                todo().sourceItemKey = value;
                return true;
            case Field::remindRepeat:
                todo().remindRepeat = value;
                return true;
            case Field::eventID:
                todo().eventID = value;
                return true;
            case Field::source:
                todo().source = value;
                return true;
            default:
                return false;
        }
    }

    bool onBoolean(bool value) override {
        if (place_ != Place::todo) return false;
        mark();
        if (field_ == Field::prio) todo().prio = value;
        if (field_ == Field::done) todo().done = value;
        return field_ == Field::prio || field_ == Field::done;
    }

    bool onNumber(double value) override {
        if (place_ != Place::todo) return false;
        mark();
        switch (field_) {
            case Field::doneAt:
                todo().doneAt = Instant{value};
                return true;
            case Field::createdAt:
                todo().createdAt = Instant{value};
                return true;
            case Field::remindAt:
                todo().remindAt = Instant{value};
                return true;
            default:
                return false;
        }
    }

    // An explicit null says the same as a missing member, where one may be missing.
    bool onNull() override {
        if (place_ == Place::fileDismissed) {
            state_.dismissed.clear();
            place_ = Place::file;
            return true;
        }
        if (place_ != Place::todo) return false;
        switch (field_) {
            case Field::tag:
                todo().tag.reset();
                return true;
            case Field::doneAt:
                todo().doneAt.reset();
                return true;
            case Field::prio:
                todo().prio.reset();
                return true;
            case Field::sourceItemKey:
                todo().sourceItemKey.reset();
                return true;
            case Field::remindAt:
                todo().remindAt.reset();
                return true;
            case Field::remindRepeat:
                todo().remindRepeat.reset();
                return true;
            case Field::eventID:
                todo().eventID.reset();
                return true;
            case Field::source:
                todo().source.reset();
                return true;
            default:
                return false;
        }
    }

    static constexpr unsigned bit(Field field) { return 1U << static_cast<unsigned>(field); }
    void mark() { seen_ |= bit(field_); }

    const Todo blank_{Uuid(std::array<std::uint8_t, 16>{}), {}, {}, false, {}, {}, {}, {}, {}, {}, {}, {}};
    Place place_ = Place::start;
    Field field_ = Field::none;
    unsigned seen_ = 0;
    bool hasTodos_ = false;
    bool hasImportDay_ = false;
    TodoState state_;
};

}  // namespace

std::string encodeTodo(const Todo& todo) {
    std::string out;
    appendTodo(out, todo);
    return out;
}

std::string encodeTodos(const TodoState& state) {
    std::string out;
    out.reserve((state.todos.size() + state.dismissed.size() + 1) * usualTodoBytes);
    out += R"({"todos":[)";
    for (std::size_t i = 0; i < state.todos.size(); ++i) {
        if (i > 0) out += ',';
        appendTodo(out, state.todos[i]);
    }
    appendMember(out, R"(],"lastImportDay":)", std::string_view(state.lastImportDay));
    out += R"(,"dismissed":[)";
    for (std::size_t i = 0; i < state.dismissed.size(); ++i) {
        if (i > 0) out += ',';
        json::appendString(out, state.dismissed[i]);
    }
    out += "]}";
    return out;
}

std::optional<TodoState> decodeTodos(std::string_view file) {
    return TodoFileReader().result(file);
}

StoreFormat todoFormat() {
    return {[](std::string_view content) { return decodeTodos(content).has_value(); },
            [](const std::string* base, std::string_view ours, std::string_view theirs) {
                const auto before = base != nullptr ? decodeTodos(*base) : std::nullopt;
                const auto mine = decodeTodos(ours);
                const auto others = decodeTodos(theirs);
                assert(mine && others);
                return encodeTodos(mergeTodos(before.value_or(TodoState{}), *mine, *others));
            }};
}

}  // namespace sunpane
