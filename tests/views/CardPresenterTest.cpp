#include "views/CardPresenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "support/ViewModelFixture.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct CardPresenterTest : testing::ViewModelFixture {
    testing::SimulatedWorkspace workspace;
    BriefColumnModel column;
    CardPresenter cards{{*model, hub, undo, platform.runLoop, workspace}, column};
    std::vector<std::string> heard;

    void SetUp() override {
        QObject::connect(&cards, &CardPresenter::announced,
                         [this](const QString& text) { heard.push_back(text.toStdString()); });
    }

    ItemFlagStore& flags() { return model->flagStore(); }
    static BriefingSection section(int id, std::string intro, const std::vector<std::string>& texts) {
        BriefingSection made{id, "Title", std::move(intro), {}};
        for (const auto& text : texts)
            made.items.emplace_back(text);
        return made;
    }
    void show(const std::vector<std::string>& texts) {
        column.show(nullptr, {section(0, "", texts)}, flags(), platform.clock);
    }
};

TEST_F(CardPresenterTest, ADragActsOnNoOtherCardOnceItsOwnIsGone) {
    show({"First", "Second"});
    cards.pointerEntered(0, 0);
    cards.dragTo(0, 0, 100);
    show({"Second"});
    cards.cardGone("first");
    cards.pointerEntered(0, 0);
    cards.drop();  // the button comes up over what has moved there
    EXPECT_FALSE(flags().isPrio("second"));
    cards.dragTo(0, 0, 100);
    cards.drop();
    EXPECT_TRUE(flags().isPrio("second"));
    EXPECT_FALSE(flags().isPrio("first"));
}

TEST_F(CardPresenterTest, AnotherCardThatGoesLeavesADragAlone) {
    show({"First", "Second"});
    cards.dragTo(0, 1, 100);
    cards.cardGone("first");
    cards.drop();
    EXPECT_TRUE(flags().isPrio("second"));
}

TEST_F(CardPresenterTest, WhatASwipeDidIsToldWhateverItWasMadeWith) {
    show({"First"});
    const std::function<void(double)> ways[] = {[&](double x) {
                                                    cards.dragTo(0, 0, x);
                                                    cards.drop();
                                                },
                                                [&](double x) {
                                                    cards.setShown(true);
                                                    cards.pointerEntered(0, 0);
                                                    pointer.scroll({ScrollPhase::began, ScrollPhase::none, 0, 0});
                                                    pointer.scroll({ScrollPhase::changed, ScrollPhase::none, x, 0});
                                                    pointer.scroll({ScrollPhase::ended, ScrollPhase::none, 0, 0});
                                                    cards.pointerLeft("first");
                                                },
                                                [&](double x) { x > 0 ? cards.flag(0, 0) : cards.dismiss(0, 0); }};
    for (const auto& swipe : ways) {
        heard.clear();
        for (const double x : {100, 100, -100, -100})
            swipe(x);
        EXPECT_THAT(heard, ElementsAre("Marked as a priority", "No longer a priority", "Cleared", "Removed"));
        for (const auto& item : section(0, "", {"First"}).items) {
            flags().unhide(item);
            flags().unclear(item);
        }
    }
    heard.clear();
    cards.dragTo(0, 0, 60);
    cards.drop();
    EXPECT_THAT(heard, IsEmpty()) << "not far enough";
}

TEST_F(CardPresenterTest, LinksOfAnIntroductionOpen) {
    column.show(nullptr, {section(4, "See [the **plan**](https://plan.example) and [x](file:///etc/passwd)", {"Card"})},
                flags(), platform.clock);
    EXPECT_THAT(cards.links(4, CardPresenter::introduction), ElementsAre("the plan"));
    for (const int link : {-1, 0, 1})
        cards.openLink(4, CardPresenter::introduction, link);
    cards.openLink(5, CardPresenter::introduction, 0);
    EXPECT_THAT(workspace.opened, ElementsAre("https://plan.example"));
    EXPECT_THAT(cards.links(4, 0), IsEmpty());
    EXPECT_EQ(column.data(column.index(0), BriefColumnModel::spokenIntroRole).toString(), "See the plan and x");
}

TEST_F(CardPresenterTest, TheTodosMakeRoomForACardBeforeItComes) {
    show({"First"});
    std::vector<std::size_t> todosThen;
    QObject::connect(&cards, &CardPresenter::todoComing,
                     [&] { todosThen.push_back(model->todoStore().todos().size()); });
    cards.choose(0, 0);
    cards.remindOfChosen(platform.clock.now().unixTime() + 60, "");
    EXPECT_THAT(todosThen, ElementsAre(0U));
    model->todoStore().remove(model->todoStore().todos().front().id);
    cards.addChosenToTodos();
    EXPECT_THAT(todosThen, ElementsAre(0U, 0U));
}

TEST_F(CardPresenterTest, ARecapWithNothingToShowHasNoBox) {
    const auto recap = section(0, "", {"Done"});
    column.show(&recap, {}, flags(), platform.clock);
    EXPECT_EQ(column.count(), 1);
    flags().hide(recap.items[0]);
    column.show(&recap, {}, flags(), platform.clock);
    EXPECT_EQ(column.count(), 0);
    const auto told = section(0, "All went well.", {"Done"});
    column.show(&told, {}, flags(), platform.clock);
    EXPECT_EQ(column.count(), 1);
}

}  // namespace
}  // namespace sunpane
