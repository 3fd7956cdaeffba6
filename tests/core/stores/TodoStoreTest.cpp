#include "core/stores/TodoStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "StoreFixture.h"
#include "support/SimulatedStores.h"

namespace sunpane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

class TodoStoreTest : public ::testing::Test {
protected:
    StoreFixture machine;
    std::unique_ptr<TodoStore> store = std::make_unique<TodoStore>(*machine.files, StoreFixture::folder);

    void TearDown() override { store.reset(); }

    void restart() {
        store.reset();
        machine.restart();
        store = std::make_unique<TodoStore>(*machine.files, StoreFixture::folder);
    }
    std::vector<std::string> texts() const { return testing::texts(store->todos()); }
    const Todo& at(const std::string& text) const {
        for (const Todo& todo : store->todos()) {
            if (todo.text == text) return todo;
        }
        throw std::runtime_error("no todo " + text);
    }
    Uuid id(const std::string& text) const { return at(text).id; }
    Instant now() const { return machine.platform.clock.now(); }
    void addAll(std::initializer_list<const char*> all) {
        for (const char* text : all)
            store->add(text);
    }
    Briefing briefing(const std::string& day, const std::string& markdown) const {
        const CivilDay civil{std::stoi(day.substr(0, 4)), std::stoi(day.substr(5, 2)), std::stoi(day.substr(8, 2))};
        return {day + ".md", *LocalCalendar(machine.platform.clock).startOfDay(civil), "t", markdown};
    }
    std::string file() {
        machine.settle();
        return machine.content("todos.json");
    }
};

TEST(TextKey, IgnoresCaseOuterSpaceAndDoubledSpacesOnce) {
    const std::pair<const char*, const char*> cases[] = {
        {"  Call  Mum \n", "call mum"}, {"a   b", "a  b"}, {"a    b", "a  b"}, {"É\u00a0", "é"}, {" \t\n", ""}};
    for (const auto& [text, key] : cases)
        EXPECT_EQ(textKey(text), key);
}

TEST_F(TodoStoreTest, AddsTypedTextsTrimmedAboveTheDoneOnes) {
    store->add("  one \n");
    store->add(" \t ");
    store->add("two");
    store->toggle(id("one"));
    store->add("one");
    EXPECT_THAT(texts(), ElementsAre("two", "one", "one"));
    EXPECT_TRUE(store->todos()[2].done);
    EXPECT_EQ(store->doneCount(), 1U);
    EXPECT_THAT(at("two").source, Optional(std::string("you")));
    EXPECT_EQ(at("two").createdAt, now());
    store->add("bad \xff byte");
    EXPECT_EQ(store->todos()[2].text, "bad \xEF\xBF\xBD byte");
    restart();
    EXPECT_EQ(store->todos().size(), 4U) << "what was written reads back";
}

TEST_F(TodoStoreTest, LinksACardToTheTodoThatSaysTheSame) {
    store->add("Call  Mum");
    store->addLinked(" call mum ", "card-1", true);
    ASSERT_THAT(texts(), ElementsAre("Call  Mum"));
    EXPECT_THAT(store->todos()[0].sourceItemKey, Optional(std::string("card-1")));
    EXPECT_TRUE(store->todos()[0].isPrio());
    store->addLinked("CALL MUM", std::nullopt, false);
    EXPECT_THAT(store->todos()[0].sourceItemKey, Optional(std::string("card-1"))) << "keeps its own";
    EXPECT_TRUE(store->todos()[0].isPrio());

    store->addLinked("from a card", "card-2", false);
    store->addLinked("urgent", std::nullopt, true);
    store->addLinked("   ", "card-3", true);
    EXPECT_THAT(texts(), ElementsAre("Call  Mum", "urgent", "from a card"));
    EXPECT_THAT(at("from a card").source, Optional(std::string("item")));
    EXPECT_EQ(at("from a card").prio, std::nullopt);
    EXPECT_THAT(at("urgent").source, Optional(std::string("you")));
    EXPECT_EQ(at("from a card").sourceNote(), "pulled from a brief item");
    EXPECT_EQ(at("urgent").sourceNote(), std::nullopt);
}

TEST_F(TodoStoreTest, KeepsTheThreeGroupsInOrder) {
    addAll({"a", "b", "c", "d"});
    store->togglePrio(id("c"));
    EXPECT_THAT(texts(), ElementsAre("c", "a", "b", "d"));
    store->toggle(id("a"));
    EXPECT_EQ(at("a").doneAt, now());
    EXPECT_THAT(texts(), ElementsAre("c", "b", "d", "a"));
    store->move(id("d"), 0);
    EXPECT_THAT(texts(), ElementsAre("c", "d", "b", "a")) << "not above the priorities";
    store->move(id("a"), 0);
    EXPECT_THAT(texts(), ElementsAre("c", "d", "b", "a")) << "back among the done";
    store->move(id("d"), 99);
    EXPECT_THAT(texts(), ElementsAre("c", "b", "d", "a"));
    store->move(id("d"), -5);
    EXPECT_THAT(texts(), ElementsAre("c", "d", "b", "a"));
    store->toggle(id("a"));
    EXPECT_EQ(at("a").doneAt, std::nullopt);
    EXPECT_THAT(texts(), ElementsAre("c", "d", "b", "a"));
    store->togglePrio(id("c"));
    EXPECT_EQ(at("c").prio, false);
}

TEST_F(TodoStoreTest, TellsOfAPriorityChangeAfterSaving) {
    store->add("a");
    std::optional<Todo> told;
    std::string fileThen;
    store->onPrioChanged = [&](const Todo& todo) {
        told = todo;
        fileThen = file();
    };
    store->togglePrio(id("a"));
    ASSERT_TRUE(told);
    EXPECT_EQ(told->prio, true);
    EXPECT_THAT(fileThen, ::testing::HasSubstr(R"("prio":true)"));
}

TEST_F(TodoStoreTest, EditsSingleFieldsAndIgnoresUnknownIds) {
    store->add("a");
    const Uuid known = id("a");
    store->rename(known, "  b ");
    store->rename(known, "   ");
    EXPECT_THAT(texts(), ElementsAre("b"));
    store->setReminder(known, Instant{900}, "daily");
    EXPECT_EQ(at("b").remindAt, Instant{900});
    EXPECT_THAT(at("b").remindRepeat, Optional(std::string("daily")));
    store->setReminder(known, std::nullopt, "daily");
    EXPECT_EQ(at("b").remindAt, std::nullopt);
    EXPECT_EQ(at("b").remindRepeat, std::nullopt);
    store->setEventID("event", known);
    EXPECT_THAT(at("b").eventID, Optional(std::string("event")));

    const auto before = store->todos();
    const std::string fileBefore = file();
    machine.disk.removeExternally(StoreFixture::path("todos.json"));
    const Uuid unknown = Uuid::random();
    store->toggle(unknown);
    store->togglePrio(unknown);
    store->rename(unknown, "x");
    store->rename(known, "b");
    store->setReminder(unknown, Instant{1}, {});
    store->setEventID({}, unknown);
    store->move(unknown, 0);
    EXPECT_EQ(store->todos(), before);
    EXPECT_EQ(file(), "(no file)") << "nothing changed, nothing saved";
    store->remove(unknown);
    EXPECT_EQ(file(), fileBefore);
    EXPECT_THAT(store->dismissed(), IsEmpty());
}

TEST_F(TodoStoreTest, RemembersWhatWasDeletedUntilItIsRestoredOrTypedAgain) {
    addAll({"a", "B  x", "c"});
    const Todo removed = at("B  x");
    store->remove(removed.id);
    store->remove(id("a"));
    EXPECT_THAT(store->dismissed(), ElementsAre("b x", "a"));
    EXPECT_TRUE(store->isDismissed(" b  X "));
    store->ingest(briefing("2026-11-22", "- [ ] b x\n- [ ] new"));
    EXPECT_THAT(texts(), ElementsAre("c", "new"));
    store->importCalendarTodos({"A"});
    EXPECT_THAT(texts(), ElementsAre("c", "new"));
    store->restore(removed, 1);
    store->restore(removed, 0);
    EXPECT_THAT(texts(), ElementsAre("c", "B  x", "new"));
    EXPECT_THAT(store->dismissed(), ElementsAre("a"));
    store->add("A");
    EXPECT_THAT(store->dismissed(), IsEmpty());
    store->restore(Todo::make("far", now()), 99);
    EXPECT_THAT(texts(), ElementsAre("c", "B  x", "new", "A", "far"));
}

TEST_F(TodoStoreTest, ForgetsTheOldestOfMoreThanTheKeptDismissals) {
    for (int i = 0; i < 151; ++i) {
        store->add("todo " + std::to_string(i));
        store->remove(store->todos()[0].id);
        ASSERT_LE(store->dismissed().size(), 150U);
    }
    EXPECT_EQ(store->dismissed().size(), 150U);
    EXPECT_FALSE(store->isDismissed("todo 0"));
    EXPECT_EQ(store->dismissed().front(), "todo 1");
    EXPECT_EQ(store->dismissed().back(), "todo 150");
    restart();
    EXPECT_EQ(store->dismissed().size(), 150U);
}

TEST_F(TodoStoreTest, ImportsActionItemsOnceAndClearsDoneTodosWithTheDay) {
    store->add("typed");
    store->toggle(id("typed"));
    const auto today = briefing("2026-11-22", "- [ ] 💼 Send the deck\n- [x] PRSNL Call mum\n- [ ] twice\n- [ ] Twice");
    store->ingest(today);
    EXPECT_THAT(texts(), ElementsAre("Send the deck", "twice", "Twice", "Call mum"));
    EXPECT_THAT(at("Send the deck").tag, Optional(std::string("WRK")));
    EXPECT_THAT(at("Send the deck").source, Optional(std::string("brief")));
    EXPECT_EQ(at("Call mum").doneAt, now());
    EXPECT_EQ(store->lastImportDay(), "2026-11-22");
    const std::string before = file();
    int announcements = 0;
    const auto watching = store->onWillChange([&] { ++announcements; });
    store->ingest(today);
    EXPECT_EQ(file(), before);
    EXPECT_EQ(announcements, 0);
    store->toggle(id("twice"));
    store->ingest(briefing("2026-11-21", ""));
    EXPECT_THAT(texts(), ElementsAre("Send the deck", "Twice")) << "an earlier day is another day too";
    EXPECT_EQ(store->lastImportDay(), "2026-11-21");
}

TEST_F(TodoStoreTest, ImportsCalendarTitlesThatAreNotThereYet) {
    store->add("Dentist");
    const std::string before = file();
    store->importCalendarTodos({});
    store->importCalendarTodos({" ", "dentist "});
    EXPECT_EQ(file(), before);
    store->importCalendarTodos({" Pay rent ", "pay rent"});
    EXPECT_THAT(texts(), ElementsAre("Dentist", "Pay rent", "pay rent"));
    EXPECT_EQ(at("Pay rent").sourceNote(), "from your calendar");
}

TEST_F(TodoStoreTest, AnnouncesBeforeTheChange) {
    std::vector<std::size_t> sizes;
    const auto watching = store->onWillChange([&] { sizes.push_back(store->todos().size()); });
    addAll({"a", "b"});
    EXPECT_THAT(sizes, ElementsAre(0U, 1U));
}

std::string fileWith(const std::string& text) {
    return R"({"todos":[{"id":"0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9","text":")" + text +
           R"(","done":false,"createdAt":1}],"lastImportDay":"","dismissed":[]})";
}

TEST_F(TodoStoreTest, TakesOverWhatAnotherProgramWroteWithinTwoSeconds) {
    store->add("mine");
    machine.pass(2.5);
    int announcements = 0;
    const auto watching = store->onWillChange([&] { ++announcements; });
    machine.disk.writeExternally(StoreFixture::path("todos.json"), fileWith("theirs"));
    machine.pass(2);
    EXPECT_THAT(texts(), ElementsAre("theirs"));
    EXPECT_GT(announcements, 0);
    announcements = 0;
    machine.disk.writeExternally(StoreFixture::path("todos.json"), "garbage");
    machine.pass(2);
    EXPECT_THAT(texts(), ElementsAre("theirs"));
    EXPECT_EQ(announcements, 1) << "told all the same";
    machine.pass(10);
    EXPECT_EQ(announcements, 1);
    const auto garbageTime = machine.disk.stamp(StoreFixture::path("todos.json"))->modified;
    machine.disk.writeExternally(StoreFixture::path("todos.json"), fileWith("same time"));
    machine.disk.setModified(StoreFixture::path("todos.json"), garbageTime);
    machine.pass(10);
    EXPECT_THAT(texts(), ElementsAre("theirs")) << "a time that did not advance is not looked behind";
}

TEST_F(TodoStoreTest, TakesOverAFileThatAppearsWhereThereWasNone) {
    machine.pass(1);
    machine.disk.writeExternally(StoreFixture::path("todos.json"), fileWith("theirs"));
    machine.pass(2);
    EXPECT_THAT(texts(), ElementsAre("theirs"));
}

TEST_F(TodoStoreTest, KnowsItsOwnWritesAndSeesWhatHappenedBeforeTheFirstLook) {
    store->add("mine");
    machine.settle();
    machine.disk.writeExternally(StoreFixture::path("todos.json"), fileWith("a"));
    restart();
    int announcements = 0;
    const auto watching = store->onWillChange([&] { ++announcements; });
    machine.pass(3);
    EXPECT_EQ(announcements, 0) << "what was loaded is nothing new";
    restart();
    machine.pass(1);
    machine.disk.writeExternally(StoreFixture::path("todos.json"), fileWith("b"));
    machine.pass(2);
    EXPECT_THAT(texts(), ElementsAre("b"));
    const auto watchingAgain = store->onWillChange([&] { ++announcements; });
    store->add("x");
    machine.pass(20);
    EXPECT_THAT(texts(), ElementsAre("b", "x"));
    EXPECT_EQ(announcements, 1);
}

TEST_F(TodoStoreTest, AChangeBuildsOnWhatAnotherProgramHasJustWritten) {
    store->add("mine");
    machine.settle();
    machine.disk.writeExternally(StoreFixture::path("todos.json"), fileWith("theirs"));
    store->add("next");
    EXPECT_THAT(texts(), ElementsAre("theirs", "next"));
    // The other program comes in between the change and its write.
    machine.disk.writeExternally(StoreFixture::path("todos.json"), fileWith("theirs again"));
    machine.settle();
    EXPECT_THAT(texts(), ElementsAre("theirs again", "next"));
    restart();
    EXPECT_THAT(texts(), ElementsAre("theirs again", "next"));
}

}  // namespace
}  // namespace sunpane::testing
