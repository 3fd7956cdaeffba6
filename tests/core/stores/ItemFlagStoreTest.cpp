#include "core/stores/ItemFlagStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <random>

#include "StoreFixture.h"

namespace sunpane::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Key;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

constexpr Seconds day = 86400;

class ItemFlagStoreTest : public ::testing::Test {
protected:
    StoreFixture machine;
    std::unique_ptr<ItemFlagStore> store = std::make_unique<ItemFlagStore>(*machine.files, StoreFixture::folder);
    const BriefingItem march{"**Invoice** for `ACME`, March"};
    const BriefingItem april{"ACME invoice payment in April"};
    const BriefingItem other{"Water the plants tomorrow"};

    void TearDown() override { store.reset(); }

    void restart() {
        store.reset();
        machine.restart();
        store = std::make_unique<ItemFlagStore>(*machine.files, StoreFixture::folder);
    }
    /// Starts the store on a file written by someone else.
    void startOn(const std::string& file) {
        machine.settle();
        store.reset();
        machine.disk.createFolders(StoreFixture::folder);
        machine.disk.writeExternally(StoreFixture::path("itemflags.json"), file);
        restart();
    }
    static std::string key(const BriefingItem& item) { return std::string(item.id()); }
    Instant now() const { return machine.platform.clock.now(); }
    const FlagState& state() const { return store->state(); }
    nlohmann::json feedback() {
        machine.settle();
        return nlohmann::json::parse(machine.content("feedback.json"));
    }
};

TEST_F(ItemFlagStoreTest, FlaggingTwiceLeavesNoTrace) {
    store->togglePrio(march);
    EXPECT_EQ(state().prio.at("invoice-for-acme-march"), "Invoice for ACME, March");
    EXPECT_EQ(state().dates.at(key(march)), now());
    EXPECT_EQ(state().firstFlagged.at(key(march)), now());
    store->togglePrio(march);
    EXPECT_EQ(state(), FlagState{});
}

TEST_F(ItemFlagStoreTest, ClearingAndFlaggingDisplaceEachOther) {
    store->togglePrio(march);
    store->toggleCleared(march);
    EXPECT_FALSE(store->isPrio(key(march)));
    EXPECT_TRUE(store->isCleared(key(march)));
    EXPECT_THAT(state().firstFlagged, IsEmpty());
    machine.pass(10);
    store->hide(march);
    EXPECT_TRUE(store->isHidden(key(march)));
    EXPECT_EQ(state().dates.at(key(march)), now());
    store->togglePrio(march);
    EXPECT_FALSE(store->isCleared(key(march)));
    EXPECT_TRUE(store->isHidden(key(march))) << "flagged again, but still hidden";
    store->unhide(march);
    EXPECT_FALSE(store->isHidden(key(march)));

    store->hide(other);
    EXPECT_EQ(state().cleared.at(key(other)), "Water the plants tomorrow");
    store->unclear(other);
    EXPECT_FALSE(store->isHidden(key(other))) << "a mark without its card goes with it";
    store->toggleCleared(other);
    store->toggleCleared(other);
    EXPECT_THAT(state().cleared, IsEmpty());
}

TEST_F(ItemFlagStoreTest, TakingBackRestoresEveryCardThatAnOperationTouched) {
    const auto hideApril = [this] {
        store->toggleCleared(april);
        store->hide(april);
    };
    const auto toggleMarch = [this] { store->togglePrio(march); };
    struct Case {
        const char* what;
        std::function<void()> before;
        std::function<void()> operation;
    };
    for (const auto& [what, before, operation] : std::vector<Case>{
             {"flagging retired a hidden card of the topic", hideApril, toggleMarch},
             {"a priority was taken off", toggleMarch, toggleMarch},
             {"clearing dropped a priority of the topic", toggleMarch, [this] { store->toggleCleared(april); }},
             {"hiding renewed the dismissal", hideApril, [this] { store->hide(april); }},
             {"a first flag", [] {}, toggleMarch},
         }) {
        SCOPED_TRACE(what);
        before();
        const FlagState was = state();
        machine.pass(day);
        const FlagChange change = store->during(operation);
        EXPECT_NE(state(), was);
        store->togglePrio(other);
        machine.pass(100);
        store->takeBack(change);
        store->togglePrio(other);
        EXPECT_EQ(state(), was);
        EXPECT_EQ(feedback()["prio"].size(), was.prio.size());
        EXPECT_EQ(feedback()["cleared"].size(), was.cleared.size());
        EXPECT_EQ(decodeFlags(machine.content("itemflags.json")), was);
        store.reset();
        machine.disk.removeExternally(StoreFixture::path("itemflags.json"));
        restart();
    }
}

TEST_F(ItemFlagStoreTest, TakingBackLeavesAloneWhatAnotherProgramDid) {
    store->togglePrio(march);
    machine.pass(4.5);
    FlagState theirs = state();
    theirs.cleared["x"] = "theirs";
    theirs.dates["x"] = now();
    machine.disk.writeExternally(StoreFixture::path("itemflags.json"), encodeFlags(theirs));
    const FlagChange change = store->during([this] { store->togglePrio(march); });
    store->takeBack(change);
    EXPECT_EQ(state(), theirs);
}

TEST_F(ItemFlagStoreTest, FollowsTheStarOfATodo) {
    store->toggleCleared(march);
    store->setPrio("the-key", "**text** as it is, invoice ACME", true);
    EXPECT_EQ(state().prio.at("the-key"), "**text** as it is, invoice ACME");
    EXPECT_THAT(state().cleared, IsEmpty()) << "the same topic";
    const Instant first = now();
    machine.pass(100);
    store->setPrio("the-key", "text", true);
    EXPECT_EQ(state().firstFlagged.at("the-key"), first);
    EXPECT_EQ(state().dates.at("the-key"), now());
    store->setPrio("the-key", "text", false);
    store->setPrio("unknown", "text", false);
    EXPECT_EQ(state(), FlagState{});
}

TEST(Topics, AreJudgedByTheirLongerWords) {
    EXPECT_THAT(significantWords("Invoice for ACME, March: q3 ÉTÉS! acme"),
                UnorderedElementsAre("invoice", "acme", "march", "étés"));
    EXPECT_THAT(significantWords("Q3 tax due"), IsEmpty());
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"Invoice for ACME, March", "ACME invoice payment in April", true},
        {"Q3 tax due", "Q3 tax due", false},
        {"alpha beta1 gamma delta epsilon", "alpha beta1 gamma other things", true},
        {"alpha beta1 gamma delta epsilon", "alpha beta1 more other things", false},
        {"alpha", "many words with alpha inside them", true}};
    TopicIndex index;
    for (const auto& [a, b, same] : cases) {
        EXPECT_EQ(sameTopic(significantWords(a), significantWords(b)), same) << a << " / " << b;
        EXPECT_EQ(index.areSameTopic(a, b), same) << a << " / " << b;
        index.clear();
        index.add(b);
        EXPECT_EQ(index.matches(a, 1), same) << a << " / " << b;
    }
}

TEST(Topics, TheIndexFindsWhatComparingWithEachFinds) {
    std::mt19937 random(20261122);
    TopicIndex index;
    for (int round = 0; round < 200; ++round) {
        std::vector<std::string> texts;
        for (int i = 0; i < 20; ++i) {
            std::string text;
            for (unsigned words = random() % 7; words > 0; --words)
                text += "word" + std::to_string(random() % 12) + " ";
            texts.push_back(text);
        }
        index.clear();
        for (std::size_t i = 1; i < texts.size(); ++i)
            index.add(texts[i]);
        for (std::size_t limit = 0; limit < texts.size(); ++limit) {
            bool expected = false;
            for (std::size_t i = 1; i <= limit; ++i) {
                expected = expected || sameTopic(significantWords(texts[0]), significantWords(texts[i]));
            }
            ASSERT_EQ(index.matches(texts[0], limit), expected) << texts[0];
        }
    }
}

// Boundaries of the three lifetimes: exactly at one a flag is still there.
TEST_F(ItemFlagStoreTest, FlagsLapseJustAfterTheirTime) {
    struct Case {
        const char* description;
        std::function<void()> act;
        Seconds lifetime;
        std::function<bool()> isThere;
    };
    const Case cases[] = {{"priority", [&] { store->togglePrio(march); }, ItemFlagStore::prioTTL,
                           [&] { return store->isPrio(key(march)); }},
                          {"dismissal", [&] { store->toggleCleared(march); }, ItemFlagStore::clearedTTL,
                           [&] { return store->isCleared(key(march)); }},
                          {"hidden mark", [&] { store->hide(march); }, ItemFlagStore::clearedTTL,
                           [&] { return store->isHidden(key(march)); }}};
    for (const Case& each : cases) {
        each.act();
        // Restarting drops the timers, whose reloads would prune as well.
        machine.platform.time.jumpWallClock(now() + each.lifetime);
        store->writeFeedback();
        EXPECT_TRUE(each.isThere()) << each.description;
        machine.platform.time.jumpWallClock(now() + 1);
        store->writeFeedback();
        EXPECT_FALSE(each.isThere()) << each.description;
        EXPECT_EQ(state(), FlagState{}) << each.description;
    }
}

TEST_F(ItemFlagStoreTest, ReferencesKeepAPriorityAliveAtMostOnceAnHourAndForTwoWeeks) {
    store->togglePrio(march);
    const Instant flagged = now();
    const std::vector<std::string> texts{"unrelated matters", "pay ACME invoice"};
    machine.platform.time.jumpWallClock(flagged + ItemFlagStore::referenceInterval);
    store->refreshPrioReferences(texts);
    EXPECT_EQ(state().dates.at(key(march)), flagged) << "within the hour";
    machine.platform.time.jumpWallClock(flagged + ItemFlagStore::referenceInterval + 1);
    store->refreshPrioReferences({});
    store->refreshPrioReferences({"unrelated matters"});
    EXPECT_EQ(state().dates.at(key(march)), flagged);
    store->refreshPrioReferences(texts);
    EXPECT_EQ(state().dates.at(key(march)), now());
    for (int passed = 1; passed <= 14; ++passed) {
        machine.platform.time.jumpWallClock(flagged + passed * day);
        EXPECT_TRUE(store->isPrio(key(march))) << passed;
        store->refreshPrioReferences(texts);
    }
    machine.platform.time.jumpWallClock(flagged + 14 * day + 1);
    store->writeFeedback();
    EXPECT_FALSE(store->isPrio(key(march)));
}

TEST_F(ItemFlagStoreTest, ALaterDismissalOfTheTopicOverridesAPriority) {
    store->togglePrio(april);
    store->togglePrio(other);
    store->toggleCleared(march);
    EXPECT_TRUE(store->isPrio(key(april))) << "dismissed at the same moment is not later";
    store->unclear(march);
    machine.pass(1);
    store->toggleCleared(march);
    EXPECT_FALSE(store->isPrio(key(april)));
    EXPECT_TRUE(store->isPrio(key(other)));
    store->togglePrio(april);
    EXPECT_TRUE(store->isPrio(key(april)));
    EXPECT_FALSE(store->isCleared(key(march))) << "taken back";
}

TEST_F(ItemFlagStoreTest, WritesTheFeedbackForTheAgent) {
    store->writeFeedback();
    for (const char* list : {"cleared", "prio", "reminders", "untouched"}) {
        EXPECT_EQ(feedback()[list], nlohmann::json::array()) << list << " is there without a flag";
    }
    store->togglePrio(BriefingItem("older priority"));
    machine.pass(day);
    store->togglePrio(BriefingItem("younger thing"));
    store->toggleCleared(BriefingItem("zebra crossing"));
    store->toggleCleared(BriefingItem("Apple harvest"));
    store->toggleCleared(BriefingItem("`äpfel` pflücken"));
    store->updateUntouched({" **bold** one ", "two"});
    store->updateReminders({"call — reminder set for 2026-11-23 09:00"});
    const auto file = feedback();
    EXPECT_EQ(file.size(), 6U);
    EXPECT_EQ(file["prio"], nlohmann::json::parse(R"([{"since":"2026-11-23","text":"younger thing"},
                                                      {"since":"2026-11-22","text":"older priority"}])"));
    EXPECT_EQ(file["cleared"], (nlohmann::json{"Apple harvest", "zebra crossing", "äpfel pflücken"}));
    EXPECT_EQ(file["untouched"], (nlohmann::json{"bold one", "two"}));
    EXPECT_EQ(file["reminders"], (nlohmann::json{"call — reminder set for 2026-11-23 09:00"}));
    EXPECT_EQ(file["updated"], "2026-11-23T00:00:00Z");
    EXPECT_TRUE(file["note"].get<std::string>().ends_with("do not nag about them before their moment."));

    int writes = 0;
    machine.disk.afterWrite = [&](const std::string&) { ++writes; };
    store->updateUntouched({"bold one", "**two**"});
    store->updateReminders({"call — reminder set for 2026-11-23 09:00"});
    machine.settle();
    EXPECT_EQ(writes, 0) << "nothing new to tell";
    store->updateUntouched({"two", "bold one"});
    machine.settle();
    EXPECT_EQ(writes, 1) << "the feedback alone";
}

TEST_F(ItemFlagStoreTest, TheDayOfAPriorityFollowsTheUsersTimeZone) {
    machine.platform.clock.zone = "Pacific/Kiritimati";  // fourteen hours ahead
    store->togglePrio(march);
    EXPECT_EQ(feedback()["prio"][0]["since"], "2026-11-22");
    machine.pass(11 * 3600);
    store->updateUntouched({"x"});
    machine.platform.clock.zone = "Pacific/Niue";  // eleven hours behind
    store->updateUntouched({"y"});
    EXPECT_EQ(feedback()["prio"][0]["since"], "2026-11-21");
}

TEST_F(ItemFlagStoreTest, FilesThatWentWithTheirFolderComeBackWithIt) {
    store->togglePrio(march);
    machine.pass(5);
    const FlagState before = state();
    machine.disk.removeFolder(StoreFixture::folder);
    machine.pass(2);
    EXPECT_EQ(state(), before);
    machine.disk.makeFolder(StoreFixture::folder);
    machine.pass(2);
    EXPECT_EQ(machine.content("itemflags.json"), encodeFlags(before));
    EXPECT_EQ(feedback()["prio"].size(), 1U);
    machine.disk.removeExternally(StoreFixture::path("itemflags.json"));
    machine.pass(10);
    EXPECT_EQ(machine.content("itemflags.json"), "(no file)") << "someone meant to remove it";
}

TEST_F(ItemFlagStoreTest, MendsWhatALoadedFileLeavesOut) {
    const std::string flagged = std::to_string(static_cast<long long>(now().sinceReference) - 100);
    startOn(R"({"prio":{"undated":"a","dated":"b"},"cleared":{"c":"text"},"hidden":["c","stray"],
                "dates":{"dated":)" +
            flagged + R"(,"nobody":5},"firstFlagged":{"nobody":5}})");
    EXPECT_THAT(state().prio, ElementsAre(Key("dated")));
    EXPECT_EQ(state().firstFlagged.at("dated"), now() - 100);
    EXPECT_EQ(state().dates.at("c"), now());
    EXPECT_THAT(state().hidden, ElementsAre("c"));
    EXPECT_THAT(state().dates, Not(Contains(Key("nobody"))));
    EXPECT_THAT(machine.content("itemflags.json"), ::testing::HasSubstr("undated")) << "a load rewrites nothing";
    EXPECT_EQ(feedback()["cleared"], nlohmann::json{"text"});
}

TEST_F(ItemFlagStoreTest, StartsEmptyWithoutAReadableFileAndKeepsIt) {
    EXPECT_EQ(machine.content("feedback.json"), "(no file)");
    startOn("{\"prio\":{}}");
    EXPECT_EQ(state(), FlagState{});
    machine.settle();
    EXPECT_EQ(machine.content("feedback.json"), "(no file)");
    store->togglePrio(march);
    machine.settle();
    EXPECT_EQ(machine.disk.filesIn(StoreFixture::folder).size(), 3U) << "flags, feedback, and the copy";
}

TEST_F(ItemFlagStoreTest, TakesOverWhatAnotherProgramWrote) {
    struct Case {
        const char* when;
        bool hasFlags;
        Seconds after;
    };
    for (const auto& [when, hasFlags, after] : {Case{"long after the first flag", true, 4.5},
                                                {"right after it", true, 1},
                                                {"where there was no file", false, 5}}) {
        SCOPED_TRACE(when);
        machine.disk.removeExternally(StoreFixture::path("itemflags.json"));
        restart();
        if (hasFlags) store->togglePrio(march);
        machine.pass(after);
        int announcements = 0;
        const auto watching = store->onWillChange([&] { ++announcements; });
        const std::string soon = std::to_string(static_cast<long long>(now().sinceReference));
        machine.disk.writeExternally(StoreFixture::path("itemflags.json"),
                                     R"({"prio":{},"cleared":{"x":"theirs"},"dates":{"x":)" + soon + "}}");
        machine.pass(2);
        EXPECT_THAT(state().cleared, ElementsAre(Key("x")));
        EXPECT_THAT(state().prio, IsEmpty());
        EXPECT_GT(announcements, 0);
    }
}

TEST_F(ItemFlagStoreTest, AFeedbackCutOffByACrashIsWholeAfterTheNextStart) {
    store->updateUntouched({"one", "two"});
    machine.settle();
    const std::string whole = machine.content("feedback.json");
    machine.disk.writeExternally(StoreFixture::path("feedback.json"), whole.substr(0, 100));
    restart();
    EXPECT_EQ(machine.content("feedback.json"), whole);
}

TEST(FlagFile, RefusesAFileInWhichAnythingIsNotAsItMustBe) {
    EXPECT_TRUE(decodeFlags(R"({"cleared":{},"prio":{}})"));
    EXPECT_TRUE(
        decodeFlags(R"({"x":[{}],"prio":{"a":"b"},"cleared":{},"hidden":null,"dates":null,"firstFlagged":null})"));
    EXPECT_EQ(decodeFlags(R"({"prio":{"a":"b","a":"c"},"cleared":{"k":"v"},"cleared":{}})"),
              (FlagState{{{"a", "c"}}, {}, {}, {}, {}}));
    for (const char* file : {"",
                             "null",
                             "[]",
                             "{}",
                             R"({"prio":{}})",
                             R"({"cleared":{}})",
                             R"({"prio":[],"cleared":{}})",
                             R"({"prio":null,"cleared":{}})",
                             R"({"prio":{"a":1},"cleared":{}})",
                             R"({"prio":{"a":null},"cleared":{}})",
                             R"({"prio":{"a":{}},"cleared":{}})",
                             R"({"prio":{},"cleared":{},"hidden":{}})",
                             R"({"prio":{},"cleared":{},"hidden":[1]})",
                             R"({"prio":{},"cleared":{},"hidden":[["x"]]})",
                             R"({"prio":{},"cleared":{},"dates":[]})",
                             R"({"prio":{},"cleared":{},"dates":{"a":"b"}})",
                             R"({"prio":{},"cleared":{},"dates":{"a":1e999}})",
                             R"({"prio":{},"cleared":{},"firstFlagged":{"a":true}})",
                             R"({"prio":{},"cleared":{}}{})",
                             R"({"prio":{},"cleared":{"\ud800":"x"}})"}) {
        EXPECT_FALSE(decodeFlags(file)) << file;
    }
}

TEST(FlagMerge, CarriesBothSidesCardsAndTheLaterChangeOfOne) {
    const auto prio = [](double date) {
        return FlagState{{{"k", "text"}}, {}, {}, {{"k", Instant{date}}}, {{"k", Instant{1}}}};
    };
    const auto cleared = [](double date) { return FlagState{{}, {{"k", "text"}}, {}, {{"k", Instant{date}}}, {}}; };
    const FlagState none;
    const std::tuple<FlagState, FlagState, FlagState, FlagState> cases[] = {{none, prio(5), none, prio(5)},
                                                                            {none, none, prio(5), prio(5)},
                                                                            {prio(1), none, prio(1), none},
                                                                            {prio(1), prio(1), none, none},
                                                                            {prio(1), cleared(5), prio(4), cleared(5)},
                                                                            {prio(1), prio(4), cleared(5), cleared(5)},
                                                                            {prio(1), none, prio(7), prio(7)},
                                                                            {prio(1), cleared(3), none, cleared(3)}};
    for (const auto& [base, ours, theirs, expected] : cases)
        EXPECT_EQ(mergeFlags(base, ours, theirs), expected);
}

TEST_F(ItemFlagStoreTest, DatesBeyondEveryCalendarDoNoHarm) {
    for (const char* date : {"1e308", "-1e308", "1e15", "-1e15", "9e18"}) {
        startOn(std::string(R"({"prio":{"a":"b"},"cleared":{"c":"d"},"dates":{"a":)") + date + R"(,"c":)" + date +
                "}}");
        machine.settle();
        restart();
        store->togglePrio(march);
        EXPECT_TRUE(store->isPrio(key(march)));
    }
}

}  // namespace
}  // namespace sunpane::testing
