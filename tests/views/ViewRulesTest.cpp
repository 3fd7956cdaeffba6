#include <gtest/gtest.h>

#include "views/BriefSelection.h"
#include "views/PanelLayout.h"

namespace sunpane {
namespace {

TEST(PanelLayout, TheHigherColumnDecidesWithinItsLimits) {
    using panel_layout::Content;
    struct Case {
        Content content;
        double height;
    };
    const Case cases[] = {
        {{32, 850, 0, false, 0, false, false}, 250},  // the empty todo column: 32 + 44 + 144 + 30
        {{10, 850, 0, false, 0, false, false}, 240},  // never lower
        {{32, 850, 0, true, 0, false, false}, 386},   // not measured yet
        {{32, 850, 0, true, 300, false, false}, 424},
        {{32, 850, 0, true, 300, true, true}, 520},
        {{32, 850, 0, true, 2000, false, false}, 850},  // never higher
        {{32, 850, 5, true, 100, false, false}, 362},
        {{32, 850, 20, true, 100, false, false}, 558},  // counted as 12 todos
    };
    for (const auto& c : cases)
        EXPECT_DOUBLE_EQ(panel_layout::expandedHeight(c.content), c.height);
}

Briefing briefing(std::string markdown) {
    return {"2026-11-22.md", {}, "Title", std::move(markdown)};
}

TEST(BriefSelection, ShowsTheRecapFirstAndTheRestInOrder) {
    struct Case {
        const char* title;
        const char* recapTitle;  // null: no recap
    };
    const Case cases[] = {{"🌙 Evening", "Evening"}, {"Daily ReCap", "Daily ReCap"}, {"📋 EOD notes", "EOD notes"},
                          {"Schedule", nullptr},    {"🌒 Evening", nullptr},         {"🌙 — 42", ""}};
    for (const auto& c : cases) {
        const auto sections =
            briefing("### A\n- one\n### " + std::string(c.title) + "\n- two\n### B\n- three").sections();
        const auto* recap = brief_selection::recapSection(sections);
        ASSERT_EQ(recap != nullptr, c.recapTitle != nullptr) << c.title;
        const auto visible = brief_selection::visibleSections(sections, [](std::string_view) { return false; });
        EXPECT_EQ(visible.size(), recap != nullptr ? 2U : 3U);
        EXPECT_EQ(visible.back().title, "B");
        if (recap != nullptr) {
            EXPECT_EQ(recap->id, 1);
            EXPECT_EQ(brief_selection::recapTitle(*recap), c.recapTitle);
        }
    }
}

TEST(BriefSelection, SectionsWhoseCardsAreAllHiddenTidyThemselvesAway) {
    const auto sections = briefing("### A\n- one\n- two\n### B\nwords\n- three\n### C\n- four").sections();
    const auto hidden = [](std::string_view key) { return key == "one" || key == "three" || key == "four"; };
    const auto visible = brief_selection::visibleSections(sections, hidden);
    ASSERT_EQ(visible.size(), 2U);
    EXPECT_EQ(visible[0].title, "A");
    EXPECT_EQ(brief_selection::visibleItems(visible[0], hidden), std::vector{BriefingItem("two")});
    EXPECT_EQ(visible[1].title, "B");  // stays for its introduction
    EXPECT_TRUE(brief_selection::visibleItems(visible[1], hidden).empty());
}

TEST(BriefSelection, PrioritiesThatTheBriefingNoLongerMentionsFormASection) {
    const auto sections = briefing("### Inbox\nThe invoice is paid.\n- **Standup** with the platform team").sections();
    const std::map<std::string, std::string> prio{
        {"a", "Renew the passport"}, {"b", "Platform standup at ten"}, {"c", "Call Anna"}, {"d", "Invoice paid"}};
    const auto missed = brief_selection::droppedPrioSection(sections, prio);
    ASSERT_TRUE(missed);
    EXPECT_EQ(missed->id, -99);
    EXPECT_EQ(missed->title, "⚡ Priorities the brief missed");
    EXPECT_EQ(missed->items, (std::vector{BriefingItem("**Call Anna**"), BriefingItem("**Renew the passport**")}));
    EXPECT_FALSE(brief_selection::droppedPrioSection(sections, {{"d", "Invoice paid"}}));
    EXPECT_FALSE(brief_selection::droppedPrioSection(sections, {}));
}

}  // namespace
}  // namespace sunpane
