#include "app/CardActions.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "core/stores/StoreFixture.h"

namespace sunpane {
namespace {

struct CardActions : ::testing::Test {
    testing::StoreFixture machine;
    TodoStore todos{*machine.files, testing::StoreFixture::folder};
    ItemFlagStore flags{*machine.files, testing::StoreFixture::folder};
    const BriefingItem card{"**Sign the NDA** with `legal` — they asked *twice*"};
};

TEST_F(CardActions, CopiesTheTextWithoutBoldAndCode) {
    EXPECT_EQ(card_actions::copyText(card), "Sign the NDA with legal — they asked *twice*");
}

TEST_F(CardActions, ADragCarriesWhatATodoNeeds) {
    const BriefingItem quoted("Say \"no\" \\ now");
    flags.togglePrio(quoted);
    const auto payload = nlohmann::json::parse(card_actions::dragPayload(quoted, flags));
    EXPECT_EQ(payload["dawnly"], true);
    EXPECT_EQ(payload["text"], quoted.suggestedTodoText());
    EXPECT_EQ(payload["key"], quoted.id());
    EXPECT_EQ(payload["prio"], true);
}

TEST_F(CardActions, AReminderGoesToTheOpenTodoOfTheCard) {
    const Instant time = machine.platform.clock.now() + 3600;
    flags.togglePrio(card);
    card_actions::setReminder(card, time, "weekly", todos, flags);
    ASSERT_EQ(todos.todos().size(), 1U);
    const Todo first = todos.todos()[0];
    EXPECT_EQ(first.text, card.suggestedTodoText());
    EXPECT_EQ(first.sourceItemKey, card.id());
    EXPECT_TRUE(first.isPrio());
    EXPECT_EQ(first.remindAt, time);
    EXPECT_EQ(first.remindRepeat, "weekly");

    // Again: the same todo, moved to another time and to once.
    card_actions::setReminder(card, time + 60, std::nullopt, todos, flags);
    ASSERT_EQ(todos.todos().size(), 1U);
    EXPECT_EQ(todos.todos()[0].remindAt, time + 60);
    EXPECT_EQ(todos.todos()[0].remindRepeat, std::nullopt);

    // A done one gets none.
    todos.toggle(first.id);
    todos.setReminder(first.id, std::nullopt, std::nullopt);
    card_actions::setReminder(card, time, std::nullopt, todos, flags);
    for (const Todo& todo : todos.todos())
        EXPECT_EQ(todo.remindAt.has_value(), !todo.done);
}

}  // namespace
}  // namespace sunpane
