#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <set>
#include <string_view>

#include "core/stores/TodoFile.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

bool hasDistinctIds(const sunpane::TodoState& state) {
    std::set<sunpane::Uuid> ids;
    for (const auto& todo : state.todos)
        ids.insert(todo.id);
    return ids.size() == state.todos.size();
}

}  // namespace

// Whatever decodes is JSON, survives a writing and a reading unchanged, and merges with itself into itself.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sunpane;
    const std::string_view file(reinterpret_cast<const char*>(data), size);
    auto state = decodeTodos(file);
    if (!state) return 0;
    require(nlohmann::json::accept(file));
    const std::string written = encodeTodos(*state);
    require(nlohmann::json::accept(written));
    const auto again = decodeTodos(written);
    require(again && *again == *state);
    require(encodeTodos(*again) == written);
    if (!hasDistinctIds(*state)) return 0;
    partition(state->todos);
    require(mergeTodos(*state, *state, *state) == *state);
    require(mergeTodos({}, *state, {}).todos == state->todos);
    require(mergeTodos({}, {}, *state).todos == state->todos);
    if (!state->todos.empty()) {
        Todo moved = state->todos.front();
        moved.done = !moved.done;
        auto expected = *state;
        expected.todos.front() = moved;
        auto toggled = expected.todos;
        partition(expected.todos);
        moveIntoGroup(toggled, 0);
        require(toggled == expected.todos);
        require(mergeTodos(*state, expected, *state).todos == expected.todos);
    }
    return 0;
}
