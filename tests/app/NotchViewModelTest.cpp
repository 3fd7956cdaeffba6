#include "app/NotchViewModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "app/PanelBriefing.h"
#include "support/ViewModelFixture.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;

struct NotchViewModelTest : testing::ViewModelFixture {
    void start() {
        model->start();
        platform.time.runPending();
    }
    // An agent's write, followed by the folder's event and the time that everything needs to settle.
    void agentWrites(const std::string& name, const std::string& content) {
        folder.write(name, content);
        folderEvents.tell(folder.path(), name);
        platform.time.advance(0.5);
    }
    std::vector<std::string> ids() const {
        std::vector<std::string> result;
        for (const auto& briefing : model->briefings())
            result.push_back(briefing.id);
        return result;
    }
};

TEST_F(NotchViewModelTest, ListsNewestFirstAndStepsBetweenDays) {
    folder.write("2026-11-21.md", "# Yesterday\n- a");
    folder.write("2026-11-22.md", "# Today\n- b");
    start();
    EXPECT_THAT(ids(), ElementsAre("2026-11-22.md", "2026-11-21.md"));
    EXPECT_EQ(model->current()->title, "Today");
    model->newer();
    EXPECT_EQ(model->currentIndex(), 0U);
    model->older();
    model->older();
    EXPECT_EQ(model->current()->title, "Yesterday");
    EXPECT_FALSE(model->canGoOlder());
    EXPECT_TRUE(model->canGoNewer());
    // Whatever arrives shows the newest again.
    agentWrites("2026-11-20.md", "# Before");
    EXPECT_EQ(model->currentIndex(), 0U);
    EXPECT_EQ(model->briefings().size(), 3U);
}

TEST_F(NotchViewModelTest, MarksAChangedNewestBriefingUnreadUntilThePanelOpens) {
    folder.write("2026-11-21.md", "# A");
    start();
    EXPECT_FALSE(model->hasUnread());  // what was there at the start is not news
    agentWrites("2026-11-22.md", "# B\n- one");
    EXPECT_TRUE(model->hasUnread());
    model->setExpanded(true);
    EXPECT_FALSE(model->hasUnread());
    agentWrites("2026-11-22.md", "# B\n- one");
    EXPECT_FALSE(model->hasUnread());
    agentWrites("2026-11-21.md", "# A, edited");  // not the newest
    EXPECT_FALSE(model->hasUnread());
    agentWrites("2026-11-22.md", "# B\n- two");
    EXPECT_TRUE(model->hasUnread());
    std::filesystem::remove(folder / "2026-11-21.md");
    std::filesystem::remove(folder / "2026-11-22.md");
    platform.time.advance(20);
    EXPECT_EQ(model->current(), nullptr);
    EXPECT_FALSE(model->hasUnread());
    // After an empty list the next one counts as the first again.
    agentWrites("2026-11-22.md", "# C");
    EXPECT_FALSE(model->hasUnread());
}

TEST_F(NotchViewModelTest, MovesToAnotherFolderWithOneProviderAtATime) {
    folder.write("2026-11-22.md", "# Here");
    start();
    const testing::TemporaryFolder other;
    other.write("2026-11-22.md", "# There");
    defaults.set("briefingsFolderPath", other.path());
    const auto timers = platform.time.pendingCount();
    notifications.post("briefingsFolderChanged");
    platform.time.runPending();
    EXPECT_EQ(model->current()->title, "There");
    EXPECT_EQ(folderEvents.watcherCount(), 1U);
    EXPECT_EQ(platform.time.pendingCount(), timers);
    agentWrites("2026-11-23.md", "# Ignored: the old folder");
    EXPECT_EQ(model->briefings().size(), 1U);
}

TEST_F(NotchViewModelTest, TodosAndFlagsStayInTheirFolderWhenAnotherIsWatched) {
    folder.write("2026-11-22.md", "# Here\n### S\n- **Old** card\n### Action Items\n- [ ] Old task\n");
    start();
    model->todoStore().setReminder(model->todoStore().todos().front().id, platform.clock.now() + 3600, std::nullopt);
    const testing::TemporaryFolder other;
    other.write("2026-11-22.md", "# There\n### S\n- **New** card\n### Action Items\n- [ ] New task\n");
    defaults.set("briefingsFolderPath", other.path());
    notifications.post("briefingsFolderChanged");
    platform.time.advance(3);  // and whoever reads the stores' files anew has done so
    model->flagStore().togglePrio(BriefingItem("**Flagged** there"));
    model->todoStore().toggle(model->todoStore().todos().back().id);
    platform.time.advance(3);
    storeFiles.drain();

    EXPECT_THAT(testing::texts(model->todoStore().todos()), ElementsAre("Old task", "New task"));
    const auto feedback = nlohmann::json::parse(files.content(folder / "feedback.json").value());
    EXPECT_EQ(feedback["untouched"], nlohmann::json::array({"New card"}));
    EXPECT_EQ(feedback["prio"][0]["text"], "Flagged there");
    EXPECT_EQ(feedback["reminders"].size(), 1U);
    for (const char* name : {"todos.json", "itemflags.json"})
        EXPECT_TRUE(files.content(folder / name)) << name;
    for (const char* name : {"todos.json", "itemflags.json", "feedback.json"})
        EXPECT_FALSE(files.content(other / name)) << name;

    // The next run has the other folder's, and leaves the first one's as they are.
    const auto left = files.content(folder / "todos.json");
    restart();
    start();
    model->todoStore().add("Only there");
    storeFiles.drain();
    EXPECT_EQ(model->todoStore().todos().size(), 2U);
    EXPECT_TRUE(files.content(other / "todos.json"));
    EXPECT_EQ(files.content(folder / "todos.json"), left);
}

TEST_F(NotchViewModelTest, AFolderThatCannotBeMadeIsEmptyUntilItIsThere) {
    folder.write("2026-11-22.md", "# Here");
    folder.write("file", "");
    start();
    defaults.set("briefingsFolderPath", folder / "file/briefings");
    notifications.post("briefingsFolderChanged");
    platform.time.runPending();
    EXPECT_EQ(model->current(), nullptr);
    EXPECT_FALSE(model->hasUnread());
    std::filesystem::remove(folder / "file");
    std::filesystem::create_directories(folder / "file/briefings");
    folder.write("file/briefings/2026-11-22.md", "# There");
    platform.time.advance(20);
    ASSERT_NE(model->current(), nullptr);
    EXPECT_EQ(model->current()->title, "There");
    EXPECT_TRUE(folderEvents.watcherCount() == 1);
    std::filesystem::remove_all(folder / "file");
    platform.time.advance(20);
    EXPECT_EQ(model->current(), nullptr);
}

TEST_F(NotchViewModelTest, DropsBriefingsOlderThanThirtyDaysNowAndTwiceADay) {
    folder.write("2026-10-01.md", "# Old");
    folder.write("2026-11-01.md", "# Kept");
    start();
    EXPECT_THAT(ids(), ElementsAre("2026-11-01.md"));
    platform.time.advance(20 * 86400.0);
    EXPECT_THAT(ids(), ElementsAre());
    EXPECT_FALSE(std::filesystem::exists(folder / "2026-11-01.md"));
}

TEST_F(NotchViewModelTest, AnnouncesEachChangeBeforeItTakesEffect) {
    folder.write("2026-11-22.md", "# A");
    start();
    std::vector<bool> expandedAtAnnouncement;
    const auto subscription = model->onWillChange([&] { expandedAtAnnouncement.push_back(model->expanded()); });
    model->setExpanded(true);
    model->setExpanded(false);
    EXPECT_THAT(expandedAtAnnouncement, ElementsAre(false, true));
}

TEST_F(NotchViewModelTest, IgnoresMeasurementsThatDifferByHalfAPoint) {
    start();
    struct Step {
        double reported, kept;
    };
    for (const Step step : {Step{0, 1}, {100, 100}, {100.4, 100}, {100.5, 100}, {100.6, 100.6}, {-5, 1}}) {
        model->reportBriefContentHeight(step.reported);
        platform.time.runPending();
        EXPECT_DOUBLE_EQ(model->briefContentHeight(), step.kept);
    }
}

TEST_F(NotchViewModelTest, TellsTheAgentWhatIsUntouchedASecondAfterTheLastFlag) {
    std::string cards = "# A\n### S\n";
    for (int i = 1; i <= 30; ++i)
        cards += "- **Card** " + std::to_string(i) + "\n";
    folder.write("2026-11-22.md", cards + "### Action Items\n- [ ] Send the deck\n");
    start();
    const auto feedback = [&] {
        storeFiles.drain();
        return nlohmann::json::parse(files.content(folder / "feedback.json").value());
    };
    EXPECT_EQ(feedback()["untouched"].size(), 25U);
    EXPECT_EQ(feedback()["untouched"][0], "Card 1");
    for (int i = 1; i <= 10; ++i)
        model->flagStore().togglePrio(BriefingItem("**Card** " + std::to_string(i)));
    platform.time.advance(0.9);
    EXPECT_EQ(feedback()["untouched"][0], "Card 1");
    platform.time.advance(0.2);
    EXPECT_EQ(feedback()["untouched"].size(), 20U);
    EXPECT_EQ(feedback()["untouched"][0], "Card 11");

    ASSERT_EQ(model->todoStore().todos().size(), 1U);
    const Todo todo = model->todoStore().todos().front();
    EXPECT_EQ(todo.text, "Send the deck");
    const LocalCalendar calendar(platform.clock);
    const auto due = calendar.settingTime(*calendar.startOfDay(CivilDay{2027, 1, 5}), 9, 5);
    model->todoStore().setReminder(todo.id, due, "weekly");
    platform.time.advance(1.1);
    EXPECT_EQ(feedback()["reminders"], nlohmann::json::array({"Send the deck — reminder set for 2027-01-05 09:05 "
                                                              "(repeats weekly)"}));
    // The next run tells of it as well, although nothing changes.
    restart();
    start();
    model->flagStore().togglePrio(BriefingItem("**Card** 30"));
    platform.time.advance(1.1);
    EXPECT_EQ(feedback()["reminders"].size(), 1U);
    model->todoStore().toggle(todo.id);
    platform.time.advance(1.1);
    EXPECT_TRUE(feedback()["reminders"].empty());
}

TEST_F(NotchViewModelTest, AStarOnATodoFlagsTheCardItWasMadeFrom) {
    start();
    const BriefingItem card("**Reply to Legal** — due Friday");
    const std::string key(card.id());
    model->todoStore().addLinked(card.suggestedTodoText(), key, false);
    model->todoStore().togglePrio(model->todoStore().todos().front().id);
    EXPECT_TRUE(model->flagStore().isPrio(key));
    model->todoStore().togglePrio(model->todoStore().todos().front().id);
    EXPECT_FALSE(model->flagStore().isPrio(key));
}

struct NotchViewModelAgendaTest : NotchViewModelTest {
    NotchViewModelAgendaTest() { agenda.store.status = CalendarAccess::full; }
    Instant today(int hour) const { return LocalCalendar(platform.clock).settingTime(platform.clock.now(), hour, 0); }
    std::vector<std::string> todoTexts() { return testing::texts(model->todoStore().todos()); }
    void calendarChanges() {
        agenda.store.change();
        platform.time.runPending();
    }
};

TEST_F(NotchViewModelAgendaTest, ADayWithoutABriefingShowsTheCalendar) {
    agenda.store.all = {testing::timedEvent("Water plants", today(8)), testing::timedEvent("Planning", today(9), 7200)};
    folder.write("2026-11-21.md", "# Yesterday\n- a");
    start();
    EXPECT_THAT(ids(), ElementsAre("calendar-fallback", "2026-11-21.md"));
    EXPECT_FALSE(model->hasUnread());
    EXPECT_THAT(todoTexts(), ElementsAre("Water plants"));
    // The agent is not told of cards that it did not write.
    model->flagStore().togglePrio(BriefingItem("**Some** card"));
    platform.time.advance(1.1);
    storeFiles.drain();
    const auto feedback = nlohmann::json::parse(files.content(folder / "feedback.json").value());
    EXPECT_EQ(feedback["prio"].size(), 1U);
    EXPECT_TRUE(feedback["untouched"].empty());

    agenda.store.all.push_back(testing::timedEvent("Review", today(12), 7200));
    calendarChanges();
    EXPECT_NE(model->current()->markdown.find("Review"), std::string::npos);
    EXPECT_TRUE(model->hasUnread());
    // Removed from the list, a task goes back into the schedule for good.
    model->todoStore().remove(model->todoStore().todos().front().id);
    calendarChanges();
    EXPECT_THAT(todoTexts(), ElementsAre());
    EXPECT_NE(model->current()->markdown.find("Water plants"), std::string::npos);

    agentWrites("2026-11-22.md", "# Today\n- b");
    EXPECT_THAT(ids(), ElementsAre("2026-11-22.md", "2026-11-21.md"));
    platform.time.advance(86400);  // the next day has none again
    EXPECT_EQ(ids().front(), "calendar-fallback");
}

TEST_F(NotchViewModelAgendaTest, TheFirstReadingOfTheCalendarsIsNoNews) {
    agenda.store.isLoaded = false;
    folder.write("2026-11-21.md", "# Yesterday");
    start();
    EXPECT_THAT(ids(), ElementsAre("2026-11-21.md"));
    agenda.store.isLoaded = true;
    calendarChanges();
    EXPECT_THAT(ids(), ElementsAre("calendar-fallback", "2026-11-21.md"));
    EXPECT_FALSE(model->hasUnread());
    agentWrites("2026-11-22.md", "# Today");
    EXPECT_TRUE(model->hasUnread());
}

TEST_F(NotchViewModelAgendaTest, YesterdaysBriefingIsOnlyShownWhileTheCalendarsAreRead) {
    // An earlier run today had the calendar's schedule, and something was ticked.
    model->todoStore().ingest(Briefing{"calendar-fallback", platform.clock.now(), "Today", ""});
    model->todoStore().add("Done today");
    model->todoStore().toggle(model->todoStore().todos().front().id);
    platform.time.runPending();
    agenda.store.isLoaded = false;
    agenda.store.all = {testing::timedEvent("Water plants", today(8))};
    folder.write("2026-11-21.md", "# Yesterday\n### S\n- **Old** card\n### Action Items\n- [ ] Old task\n");
    const auto untouched = [&] {
        storeFiles.drain();
        const auto bytes = files.content(folder / "feedback.json");
        return bytes ? nlohmann::json::parse(*bytes)["untouched"] : nlohmann::json::array();
    };
    start();
    EXPECT_THAT(ids(), ElementsAre("2026-11-21.md"));
    EXPECT_THAT(todoTexts(), ElementsAre("Done today"));
    model->flagStore().togglePrio(BriefingItem("**Some** card"));
    platform.time.advance(1.1);
    EXPECT_TRUE(untouched().empty());

    agenda.store.isLoaded = true;
    calendarChanges();
    EXPECT_THAT(ids(), ElementsAre("calendar-fallback", "2026-11-21.md"));
    EXPECT_THAT(todoTexts(), ElementsAre("Water plants", "Done today"));
    EXPECT_TRUE(untouched().empty());
    EXPECT_FALSE(model->hasUnread());
}

TEST_F(NotchViewModelAgendaTest, AListThatWaitedForAnAnswerGivesWayToALaterOne) {
    agenda.store.status = CalendarAccess::notDetermined;
    folder.write("2026-11-21.md", "# Yesterday");
    start();
    EXPECT_EQ(agenda.store.questions, 1);
    EXPECT_THAT(ids(), ElementsAre());
    agentWrites("2026-11-22.md", "# Today");
    EXPECT_THAT(ids(), ElementsAre("2026-11-22.md", "2026-11-21.md"));
    agenda.store.answer(true);
    platform.time.runPending();
    EXPECT_THAT(ids(), ElementsAre("2026-11-22.md", "2026-11-21.md"));
    std::filesystem::remove(folder / "2026-11-22.md");
    platform.time.advance(20);
    EXPECT_THAT(ids(), ElementsAre("calendar-fallback", "2026-11-21.md"));
}

TEST_F(NotchViewModelAgendaTest, TheLatestOfManyListsIsShownAfterARefusal) {
    agenda.store.status = CalendarAccess::notDetermined;
    folder.write("2026-11-21.md", "# Yesterday");
    start();
    agentWrites("2026-11-20.md", "# Earlier");
    calendarChanges();
    EXPECT_EQ(agenda.store.questions, 1);
    EXPECT_THAT(ids(), ElementsAre());
    agenda.store.answer(false);
    platform.time.runPending();
    EXPECT_THAT(ids(), ElementsAre("2026-11-21.md", "2026-11-20.md"));
    agentWrites("2026-11-19.md", "# Before");
    EXPECT_EQ(ids().size(), 3U);
}

TEST_F(NotchViewModelAgendaTest, APriorityStaysWhileTheCalendarSpeaksOfIt) {
    agenda.store.all = {testing::timedEvent("Board meeting agenda", today(9), 7200)};
    start();
    const BriefingItem card("**Board meeting** agenda");
    model->flagStore().togglePrio(card);
    const auto flagged = [&] { return model->flagStore().state().dates.at(std::string(card.id())); };
    const Instant first = flagged();
    platform.time.advanceTo(today(13));
    const Instant referenced = flagged();
    EXPECT_GT(referenced, first);
    agenda.store.all.clear();
    platform.time.advanceTo(today(23));
    EXPECT_EQ(flagged(), referenced);
}

TEST_F(NotchViewModelAgendaTest, OpeningThePanelLooksForTheNextMeeting) {
    start();
    agenda.store.all = {testing::timedEvent("Call", today(9), 7200)};
    model->setExpanded(false);
    platform.time.runPending();
    EXPECT_FALSE(agenda.meetings.next());
    model->setExpanded(true);
    platform.time.runPending();
    ASSERT_TRUE(agenda.meetings.next());
    EXPECT_EQ(agenda.meetings.next()->title, "Call");
}

TEST_F(NotchViewModelTest, WhatPlaysIsFollowedWhileThePanelIsOpen) {
    start();
    players.applications.running.emplace("com.apple.Music");
    const auto looks = [&] { return players.scripts.timesSent(player_scripts::query(Player::music)); };
    platform.time.advance(10);
    EXPECT_EQ(looks(), 0U);
    model->setExpanded(true);
    platform.time.advance(2);
    EXPECT_EQ(looks(), 2U);
    notifications.post(notification::collapseNotch);
    platform.time.advance(10);
    EXPECT_EQ(looks(), 2U);
}

TEST_F(NotchViewModelTest, ARevealedTodoIsHighlightedForThreeSeconds) {
    start();
    const Uuid first = Uuid::random();
    const Uuid second = Uuid::random();
    const auto reveal = [&](const std::optional<std::string>& object) {
        notifications.post("revealTodo", object);
        platform.time.runPending();
    };
    reveal(first.toString());
    EXPECT_TRUE(model->expanded());
    EXPECT_EQ(model->highlightTodoID(), first);
    platform.time.advance(2.9);
    reveal(second.toString());
    platform.time.advance(2.9);
    EXPECT_EQ(model->highlightTodoID(), second);
    platform.time.advance(0.2);
    EXPECT_EQ(model->highlightTodoID(), std::nullopt);
    platform.time.advance(1.8);
    EXPECT_TRUE(model->isKeptOpen());
    platform.time.advance(0.2);
    EXPECT_FALSE(model->isKeptOpen()) << "5 s after the second";
    reveal(first.toString());
    reveal("no UUID");
    EXPECT_EQ(model->highlightTodoID(), std::nullopt);
    reveal(std::nullopt);
    EXPECT_EQ(model->highlightTodoID(), std::nullopt);
    EXPECT_TRUE(model->expanded());
}

TEST_F(NotchViewModelTest, WorksWithTheBeginningOfAHugeBriefing) {
    std::string lines = "# Huge\n";
    while (lines.size() < 3 * maximumPanelBytes)
        lines += "- card é\n";
    folder.write("2026-11-22.md", lines);
    start();
    EXPECT_LE(model->current()->markdown.size(), maximumPanelBytes);
    EXPECT_TRUE(model->current()->markdown.ends_with("é"));
    std::string oneLine = "x";
    while (oneLine.size() < 2 * maximumPanelBytes)
        oneLine += "é";
    Briefing briefing{"a.md", {}, "A", oneLine};
    limitToPanel(briefing);
    EXPECT_LE(briefing.markdown.size(), maximumPanelBytes);
    EXPECT_TRUE(briefing.markdown.ends_with("é"));
}

TEST_F(NotchViewModelTest, LeavesNothingRunningWhenItGoes) {
    folder.write("2026-11-22.md", "# A");
    start();
    folderEvents.tell(folder.path(), "2026-11-22.md");
    notifications.post("revealTodo");
    model.reset();
    platform.time.advance(100);
    storeFiles.drain();
    EXPECT_EQ(folderEvents.watcherCount(), 0U);
    EXPECT_EQ(platform.time.pendingCount(), 1U);  // the meeting watcher's timer
    agenda.store.change();
    EXPECT_TRUE(agenda.fallback.routesToTodos(testing::timedEvent("Call", {})));
}

}  // namespace
}  // namespace sunpane
