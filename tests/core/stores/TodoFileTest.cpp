#include "core/stores/TodoFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>

#include "support/SimulatedStores.h"

namespace sunpane::testing {
namespace {

constexpr const char* idText = "0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9";

Todo todo(const std::string& text, bool done = false, std::optional<bool> prio = {}) {
    Todo made = Todo::make(text, Instant{816480000});
    made.done = done;
    made.prio = prio;
    return made;
}

TEST(TodoFile, WritesKeysInOrderAndLeavesAbsentOnesOut) {
    Todo full{*Uuid::parse(idText),
              "a \"b\"\\\n\t\x01 é/",
              "WRK",
              true,
              Instant{816480000},
              Instant{816480000.25},
              false,
              "key",
              Instant{-1.5},
              "daily",
              "event",
              "item"};
    EXPECT_EQ(
        encodeTodos({{full}, "2026-11-16", {"gone"}}),
        std::string(R"({"todos":[{"id":")") + idText +
            R"(","text":"a \"b\"\\\n\t\u0001 é/","tag":"WRK","done":true,"doneAt":816480000,)"
            R"("createdAt":816480000.25,"prio":false,"sourceItemKey":"key","remindAt":-1.5,"remindRepeat":"daily",)"
            R"("eventID":"event","source":"item"}],"lastImportDay":"2026-11-16","dismissed":["gone"]})");
    const Todo bare{full.id, "x", {}, false, {}, Instant{0}, {}, {}, {}, {}, {}, {}};
    EXPECT_EQ(encodeTodos({{bare}, "", {}}),
              std::string(R"({"todos":[{"id":")") + idText +
                  R"(","text":"x","done":false,"createdAt":0}],"lastImportDay":"","dismissed":[]})");
}

TEST(TodoFile, KeepsEveryInstantExactly) {
    for (const double instant : {0.0, 1.0, 800000000.0, 816480000.123456, 816480000.1, 1e15, 9007199254740993.0, 1e22,
                                 -63114076800.0, 5e-324, 1.7976931348623157e308, 0.1 + 0.2, -0.75}) {
        TodoState state{{todo("x")}, "", {}};
        state.todos[0].createdAt = Instant{instant};
        const auto read = decodeTodos(encodeTodos(state));
        ASSERT_TRUE(read) << instant;
        EXPECT_EQ(read->todos[0].createdAt.sinceReference, instant);
    }
}

TEST(TodoFile, ReadsKeysInAnyOrderSkipsUnknownOnesAndTakesTheLastOfRepeatedOnes) {
    const auto state = decodeTodos(
        R"({"future":{"a":[1,{"b":null}]},"dismissed":["k"],"lastImportDay":"2026-01-01","todos":[
            {"createdAt":5e2,"more":[[]],"done":false,"text":"old","text":"new","tag":null,"doneAt":null,
             "id":"0a1b2c3d-4e5f-4071-8293-a4b5c6d7e8f9"}], "x":"y"})");
    ASSERT_TRUE(state);
    const Todo expected{*Uuid::parse(idText), "new", {}, false, {}, Instant{500}, {}, {}, {}, {}, {}, {}};
    EXPECT_EQ(*state, (TodoState{{expected}, "2026-01-01", {"k"}}));
    EXPECT_TRUE(decodeTodos(R"({"todos":[],"lastImportDay":""})"));
}

// An id that is there twice could be changed in one place only, and a merge would drop the other.
TEST(TodoFile, TellsTodosOfOneIdApartAlwaysInTheSameWay) {
    const auto entry = [](const char* text, const char* id) {
        return std::string(R"({"done":false,"createdAt":1,"text":")") + text + R"(","id":")" + id + R"("})";
    };
    const auto fileOf = [](const std::string& todos) { return R"({"lastImportDay":"","todos":[)" + todos + "]}"; };
    const std::string twice = entry("a", idText) + "," + entry("b", idText) + "," +
                              entry("c", "0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8FA") + "," + entry("d", idText);
    const auto base = decodeTodos(fileOf(twice));
    const auto theirs = decodeTodos(fileOf(twice + "," + entry("e", "11111111-4E5F-4071-8293-A4B5C6D7E8F9")));
    ASSERT_TRUE(base && theirs);
    std::set<Uuid> ids;
    for (const Todo& todo : base->todos)
        ids.insert(todo.id);
    EXPECT_EQ(ids.size(), 4U);
    EXPECT_EQ(base->todos[0].id.toString(), idText);
    EXPECT_EQ(base->todos[2].id.toString(), "0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8FA");
    TodoState ours = *base;
    ours.todos[1].text = "B";
    EXPECT_THAT(texts(mergeTodos(*base, ours, *theirs).todos), ::testing::ElementsAre("a", "B", "c", "d", "e"));
}

TEST(TodoFile, RefusesAFileInWhichAnythingIsNotAsItMustBe) {
    const std::string id = std::string("\"id\":\"") + idText + "\"";
    const auto withTodo = [](const std::string& members) {
        return R"({"todos":[{)" + members + R"(}],"lastImportDay":""})";
    };
    const std::string whole = id + R"(,"text":"x","done":false,"createdAt":1)";
    ASSERT_TRUE(decodeTodos(withTodo(whole)));
    std::vector<std::string> bad{"",
                                 " ",
                                 "null",
                                 "[]",
                                 "{}",
                                 "1",
                                 "\"x\"",
                                 R"({"todos":[]})",
                                 R"({"lastImportDay":""})",
                                 R"({"todos":{},"lastImportDay":""})",
                                 R"({"todos":null,"lastImportDay":""})",
                                 R"({"todos":[],"lastImportDay":null})",
                                 R"({"todos":[],"lastImportDay":5})",
                                 R"({"todos":[[]],"lastImportDay":""})",
                                 R"({"todos":["x"],"lastImportDay":""})",
                                 R"({"todos":[],"lastImportDay":"","dismissed":[1]})",
                                 R"({"todos":[],"lastImportDay":"","dismissed":{}})",
                                 R"({"todos":[],"lastImportDay":"","dismissed":"x"})",
                                 R"({"todos":[],"lastImportDay":""} x)",
                                 R"({"todos":[],"lastImportDay":"")",
                                 R"({"todos":[],"lastImportDay":"",})",
                                 std::string(R"({"todos":[],"lastImportDay":""})") + '\0',
                                 "{\"todos\":[],\"lastImportDay\":\"\xff\"}",
                                 R"({"todos":[],"lastImportDay":"\ud800"})",
                                 R"({"todos":[],"lastImportDay":"\udc00\ud800"})",
                                 std::string(1000000, '['),
                                 R"({"x":)" + std::string(1000000, '[') + std::string(1000000, ']') + "}",
                                 withTodo(R"("text":"x","done":false,"createdAt":1)"),
                                 withTodo(id + R"(,"done":false,"createdAt":1)"),
                                 withTodo(id + R"(,"text":"x","createdAt":1)"),
                                 withTodo(id + R"(,"text":"x","done":false)"),
                                 withTodo(R"("id":"nonsense","text":"x","done":false,"createdAt":1)")};
    for (const char* member : {R"("text":1)",           R"("text":null)",     R"("done":1)",
                               R"("done":"true")",      R"("createdAt":"1")", R"("createdAt":true)",
                               R"("createdAt":null)",   R"("createdAt":NaN)", R"("createdAt":1e999)",
                               R"("createdAt":-1e999)", R"("tag":1)",         R"("tag":["x"])",
                               R"("doneAt":"x")",       R"("prio":"x")",      R"("prio":1)",
                               R"("sourceItemKey":{})", R"("remindAt":[])",   R"("remindRepeat":true)",
                               R"("eventID":1)",        R"("source":1)",      R"("id":1)"}) {
        bad.push_back(withTodo(whole + "," + member));
    }
    for (const std::string& file : bad)
        EXPECT_FALSE(decodeTodos(file)) << file.substr(0, 100);
}

TEST(TodoFile, AMovedTodoLandsWhereSortingTheGroupsWouldPutIt) {
    const std::vector<Todo> sorted{todo("p1", false, true), todo("p2", false, true), todo("o1"), todo("o2"),
                                   todo("d1", true),        todo("d2", true)};
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        for (const auto& [done, prio] : {std::pair(false, false), {false, true}, {true, false}}) {
            auto moved = sorted;
            moved[i].done = done;
            moved[i].prio = prio;
            auto expected = moved;
            partition(expected);
            moveIntoGroup(moved, i);
            EXPECT_EQ(texts(moved), texts(expected)) << i << done << prio;
        }
    }
}

TEST(TodoMerge, CarriesBothSidesChanges) {
    const TodoState base{{todo("a"), todo("b"), todo("c"), todo("d")}, "2026-01-01", {"old", "older"}};
    const auto edit = [&](auto change) {
        TodoState state = base;
        change(state);
        partition(state.todos);
        return state;
    };
    const auto removeAt = [](std::size_t index) {
        return [index](TodoState& s) { s.todos.erase(s.todos.begin() + static_cast<std::ptrdiff_t>(index)); };
    };
    const auto append = [](const char* text) { return [text](TodoState& s) { s.todos.push_back(todo(text)); }; };
    const auto finish = [](std::size_t index) { return [index](TodoState& s) { s.todos[index].done = true; }; };
    const auto rename = [](std::size_t index, const char* text) {
        return [=](TodoState& s) { s.todos[index].text = text; };
    };
    const auto nothing = [](TodoState&) {};
    struct Case {
        const char* description;
        TodoState ours;
        TodoState theirs;
        std::vector<std::string> expected;
    };
    const Case cases[] = {
        {"nothing", edit(nothing), edit(nothing), {"a", "b", "c", "d"}},
        {"both add", edit(append("o")), edit(append("t")), {"a", "b", "c", "d", "t", "o"}},
        {"both remove", edit(removeAt(0)), edit(removeAt(3)), {"b", "c"}},
        {"ours alone", edit(removeAt(1)), edit(nothing), {"a", "c", "d"}},
        {"theirs alone", edit(nothing), edit(finish(0)), {"b", "c", "d", "a"}},
        {"different fields of one todo", edit(finish(0)), edit(rename(0, "A")), {"b", "c", "d", "A"}},
        {"the same field of one todo", edit(rename(1, "ours")), edit(rename(1, "theirs")), {"a", "ours", "c", "d"}},
        {"an edit outlives their removal", edit(rename(0, "A")), edit(removeAt(0)), {"A", "b", "c", "d"}},
        {"an edit outlives our removal", edit(removeAt(0)), edit(rename(0, "A")), {"A", "b", "c", "d"}},
        {"our order",
         edit([](TodoState& s) { std::swap(s.todos[0], s.todos[2]); }),
         edit(append("t")),
         {"c", "b", "a", "d", "t"}},
        {"their order",
         edit(append("o")),
         edit([](TodoState& s) { std::swap(s.todos[0], s.todos[2]); }),
         {"c", "b", "a", "d", "o"}}};
    for (const Case& each : cases) {
        EXPECT_EQ(texts(mergeTodos(base, each.ours, each.theirs).todos), each.expected) << each.description;
    }

    TodoState ours = base;
    ours.dismissed = {"older", "mine"};
    TodoState theirs = base;
    theirs.dismissed = {"old", "older", "yours"};
    theirs.lastImportDay = "2026-01-02";
    const TodoState merged = mergeTodos(base, ours, theirs);
    EXPECT_EQ(merged.dismissed, (std::vector<std::string>{"older", "yours", "mine"}));
    EXPECT_EQ(merged.lastImportDay, "2026-01-02");
}

}  // namespace
}  // namespace sunpane::testing
