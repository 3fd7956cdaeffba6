#include "core/stores/Todo.h"

#include <utility>

#include "base/Text.h"

namespace sunpane {

Todo Todo::make(std::string text, Instant now) {
    return {Uuid::random(), std::move(text), {}, false, {}, now, {}, {}, {}, {}, {}, {}};
}

std::optional<std::string_view> Todo::sourceNote() const {
    if (source == todo_source::brief) return "from your brief";
    if (source == todo_source::calendar) return "from your calendar";
    if (source == todo_source::item) return "pulled from a brief item";
    return std::nullopt;
}

std::string textKey(std::string_view text) {
    const std::string lowered = text::lowercased(text);
    return text::replacingAll(text::trimWhitespaceAndNewlines(lowered), "  ", " ");
}

}  // namespace sunpane

std::size_t std::hash<sunpane::Todo>::operator()(const sunpane::Todo& todo) const noexcept {
    std::size_t seed = 0;
    const auto mix = [&seed](const auto& value) {
        using Value = std::decay_t<decltype(value)>;
        seed = seed * 31 + std::hash<Value>()(value);
    };
    const auto instant = [](const std::optional<sunpane::Instant>& value) {
        return value ? std::optional(value->sinceReference) : std::nullopt;
    };
    mix(todo.id.toString());
    mix(todo.text);
    mix(todo.tag);
    mix(todo.done);
    mix(instant(todo.doneAt));
    mix(todo.createdAt.sinceReference);
    mix(todo.prio);
    mix(todo.sourceItemKey);
    mix(instant(todo.remindAt));
    mix(todo.remindRepeat);
    mix(todo.eventID);
    mix(todo.source);
    return seed;
}
