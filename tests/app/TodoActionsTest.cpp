#include "app/TodoActions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/StoresFixture.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;

struct TodoActionsTest : testing::StoresFixture {
    TodoStore todos{storeFiles, "/briefings"};
    NotchUndo undo;
};

TEST_F(TodoActionsTest, WhatIsDroppedIsACardOrAText) {
    struct Case {
        const char* dropped;
        const char* text;
        std::optional<std::string> key;
        bool prio;
    };
    const Case cases[] = {
        {R"({"dawnly": true, "text": "Reply to Legal", "key": "reply-legal", "prio": true})", "Reply to Legal",
         "reply-legal", true},
        {R"({"text": "No key", "dawnly": true, "prio": "yes"})", "No key", std::nullopt, false},
        {R"({"dawnly": true, "text": "Odd key", "key": 7})", "Odd key", std::nullopt, false},
        {R"({"dawnly": 1, "text": "Mark"})", R"({"dawnly": 1, "text": "Mark"})", std::nullopt, false},
        {R"({"dawnly": true, "text": 5})", R"({"dawnly": true, "text": 5})", std::nullopt, false},
        {R"(["dawnly"])", R"(["dawnly"])", std::nullopt, false},
        {"  Buy milk\n", "Buy milk", std::nullopt, false},
        {"{ not json", "{ not json", std::nullopt, false},
    };
    for (const auto& c : cases) {
        todo_actions::addDropped(todos, c.dropped);
        const auto& list = todos.todos();
        const auto added =
            std::find_if(list.begin(), list.end(), [&](const Todo& todo) { return todo.text == c.text; });
        ASSERT_NE(added, list.end()) << c.dropped;
        EXPECT_EQ(added->sourceItemKey, c.key) << c.dropped;
        EXPECT_EQ(added->isPrio(), c.prio) << c.dropped;
        EXPECT_EQ(added->source, c.key ? "item" : "you") << c.dropped;
    }
    const auto before = todos.todos();
    todo_actions::addDropped(todos, cases[0].dropped);
    todo_actions::addDropped(todos, " \n ");
    todo_actions::addDropped(todos, std::string(200000, '['));  // a text, and no tower for the parser
    EXPECT_EQ(todos.todos().size(), before.size() + 1);
}

TEST_F(TodoActionsTest, AnEditCanBeTakenBackAndNothingIsRememberedOfNone) {
    todos.add("Call mum");
    const Uuid id = todos.todos().front().id;
    todo_actions::renameWithUndo(todos, id, "  ", undo);
    todo_actions::renameWithUndo(todos, id, "Call mum", undo);
    todo_actions::renameWithUndo(todos, Uuid::random(), "Nobody", undo);
    EXPECT_FALSE(undo.undo());
    todo_actions::renameWithUndo(todos, id, " Call dad ", undo);
    EXPECT_THAT(testing::texts(todos.todos()), ElementsAre("Call dad"));
    EXPECT_TRUE(undo.undo());
    EXPECT_THAT(testing::texts(todos.todos()), ElementsAre("Call mum"));
}

TEST_F(TodoActionsTest, WhatACommandAsksForMayBeAskedForTwice) {
    const Uuid id = Uuid::random();
    using todo_actions::Outcome;
    const auto perform = [&](std::string_view verb, std::string_view text = "") {
        return todo_actions::perform(todos, verb, id, text, undo);
    };
    EXPECT_EQ(perform("done"), Outcome::noSuchTodo);
    EXPECT_EQ(perform("add", " \n"), Outcome::invalid);
    struct Step {
        const char* verb;
        const char* text;
        bool done, prio;
        const char* leaves;
    };
    for (const Step& step : {Step{"add", "one", false, false, "one"}, Step{"done", "", true, false, "one"},
                             Step{"prio", "", true, true, "one"}, Step{"open", "", false, true, "one"},
                             Step{"unprio", "", false, false, "one"}, Step{"rename", "two", false, false, "two"}}) {
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(perform(step.verb, step.text), Outcome::done) << step.verb;
            ASSERT_EQ(todos.todos().size(), 1U) << step.verb;
            const Todo& todo = todos.todos()[0];
            EXPECT_EQ(todo.done, step.done) << step.verb;
            EXPECT_EQ(todo.isPrio(), step.prio) << step.verb;
            EXPECT_EQ(todo.text, step.leaves) << step.verb;
        }
    }
    EXPECT_EQ(perform("rename", " "), Outcome::invalid);
    EXPECT_EQ(perform("frobnicate"), Outcome::invalid);
    EXPECT_EQ(undo.size(), 1U) << "the new text";
    EXPECT_EQ(perform("delete"), Outcome::done);
    EXPECT_EQ(perform("delete"), Outcome::noSuchTodo);
    EXPECT_TRUE(undo.undo());
    EXPECT_THAT(testing::texts(todos.todos()), ElementsAre("two"));
}

}  // namespace
}  // namespace sunpane
