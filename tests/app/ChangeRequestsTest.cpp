#include "app/ChangeRequests.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "support/ViewModelFixture.h"

namespace sunpane {
namespace {

using Outcome = StoreChangeAnswer::Outcome;

class DirectRequests : public StoreRequests {
public:
    Subscription serve(Handler handler) override {
        handler_ = std::move(handler);
        return Subscription([this] { handler_ = nullptr; });
    }
    void ask(const StoreChange& change, Reply reply) { handler_(change, std::move(reply)); }

private:
    Handler handler_;
};

struct ChangeRequestsTest : testing::ViewModelFixture {
    DirectRequests requests;
    std::optional<ChangeRequests> served;
    std::vector<StoreChangeAnswer> answers;

    ChangeRequestsTest() {
        served.emplace(ChangeRequests::Collaborators{requests, *model, undo, platform.clock, platform.runLoop, files});
    }
    StoreChange change(const std::string& verb, const Uuid& id, const std::string& text = "") {
        return {StoreChange::Subject::todo, folder.path(), verb, id.toString(), text, platform.clock.now() + 5};
    }
    void ask(const StoreChange& change) {
        requests.ask(change, [this](const StoreChangeAnswer& answer) { answers.push_back(answer); });
    }
    std::string todosFile() const { return files.content(folder.path() + "/todos.json").value_or(""); }
};

TEST_F(ChangeRequestsTest, AnswersOnceTheFilesHaveTheChange) {
    const Uuid id = Uuid::random();
    ask(change("add", id, "Water the plants"));
    EXPECT_EQ(model->todoStore().todos().size(), 1U) << "at once";
    EXPECT_TRUE(answers.empty()) << "but not in the file";
    platform.time.advance(1);
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_EQ(answers[0].outcome, Outcome::written);
    EXPECT_EQ(answers[0].number, 1U);
    EXPECT_NE(todosFile().find(id.toString()), std::string::npos);

    ask(change("add", id, "Water the plants"));
    ASSERT_EQ(answers.size(), 2U) << "nothing to write";
    EXPECT_EQ(model->todoStore().todos().size(), 1U);
    ask({StoreChange::Subject::flag, folder.path(), "prio", "card", "A card", platform.clock.now() + 5});
    platform.time.advance(1);
    EXPECT_EQ(answers.at(2).outcome, Outcome::written);
    EXPECT_TRUE(model->flagStore().isPrio("card"));
    EXPECT_TRUE(undo.undo());
    EXPECT_FALSE(model->flagStore().isPrio("card"));
}

TEST_F(ChangeRequestsTest, NeverDoesTheOppositeBecauseAnotherProgramWasFaster) {
    for (const std::string verb : {"done", "open", "prio", "unprio"}) {
        SCOPED_TRACE(verb);
        const Uuid id = Uuid::random();
        ask(change("add", id, "Call mum"));
        ask(change(verb == "open" ? "done" : verb == "unprio" ? "prio" : "open", id));
        platform.time.advance(5);
        auto foreign = decodeTodos(todosFile()).value();
        for (Todo& todo : foreign.todos) {
            if (todo.id != id) continue;
            if (verb == "done" || verb == "open") todo.done = verb == "done";
            if (verb == "prio" || verb == "unprio") todo.prio = verb == "prio";
            if (verb == "done") todo.remindAt = platform.clock.now() + 3600;
        }
        files.writeExternally(folder.path() + "/todos.json", encodeTodos(foreign));
        answers.clear();
        ask(change(verb, id));
        platform.time.advance(5);
        ASSERT_EQ(answers.size(), 1U);
        EXPECT_EQ(answers[0].outcome, Outcome::written);
        const auto written = decodeTodos(todosFile()).value();
        const auto todo = std::find_if(written.todos.begin(), written.todos.end(),
                                       [&](const Todo& candidate) { return candidate.id == id; });
        ASSERT_NE(todo, written.todos.end());
        EXPECT_EQ(todo->done, verb == "done");
        EXPECT_EQ(todo->isPrio(), verb == "prio");
        EXPECT_EQ(todo->remindAt, std::nullopt);
    }
}

TEST_F(ChangeRequestsTest, SaysWhenTheFilesCannotBeWrittenAndNeverAnswersTwice) {
    files.readOnlyFolders.insert(folder.path());
    ask(change("add", Uuid::random(), "Kept"));
    platform.time.advance(ChangeRequests::patience - 0.1);
    EXPECT_TRUE(answers.empty());
    platform.time.advance(0.2);
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_EQ(answers[0].outcome, Outcome::kept);
    // Whoever floods the program gets answers, and it stays small.
    for (std::size_t i = 0; i < ChangeRequests::maximumWaiting + 5; ++i)
        ask(change("add", Uuid::random(), "More"));
    EXPECT_EQ(answers.size(), 6U);
    // What goes away first leaves nothing behind that would call it.
    served.reset();
    files.readOnlyFolders.clear();
    platform.time.advance(10);
    EXPECT_EQ(answers.size(), 6U);
    EXPECT_NE(todosFile().find("Kept"), std::string::npos);
}

TEST_F(ChangeRequestsTest, WaitsForTheFilesThatHoldTheChangeAndNoOthers) {
    const Uuid id = Uuid::random();
    ask(change("add", id, "Linked"));
    platform.time.advance(1);
    auto linked = decodeTodos(todosFile()).value();
    linked.todos.at(0).sourceItemKey = "card";
    files.writeExternally(folder.path() + "/todos.json", encodeTodos(linked));
    const StoreChange flag{StoreChange::Subject::flag, folder.path(), "prio", "x", "X", platform.clock.now() + 5000};
    struct Case {
        const char* forbidden;
        StoreChange change;
        Outcome outcome;
    };
    const Case cases[] = {
        {"/feedback.json", flag, Outcome::written},
        {"/feedback.json", change("add", Uuid::random(), "y"), Outcome::written},
        {"/todos.json", flag, Outcome::written},
        {"/itemflags.json", flag, Outcome::kept},
        {"/itemflags.json", change("prio", id), Outcome::kept},
        {"/itemflags.json", change("done", id), Outcome::written},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.forbidden + (" " + c.change.verb));
        files.forbiddenFiles = {folder.path() + c.forbidden};
        answers.clear();
        StoreChange request = c.change;
        request.expires = platform.clock.now() + 5;
        ask(request);
        platform.time.advance(1);
        EXPECT_EQ(answers.size(), c.outcome == Outcome::written ? 1U : 0U);
        platform.time.advance(ChangeRequests::patience);
        ASSERT_EQ(answers.size(), 1U);
        EXPECT_EQ(answers[0].outcome, c.outcome);
    }
}

TEST_F(ChangeRequestsTest, SaysWhenOnlyItsMemoryHasTheChangeAndWritesItOnceThereIsRoom) {
    files.freeBytes = 0;
    ask(change("add", Uuid::random(), "No room"));
    platform.time.advance(ChangeRequests::patience + 0.1);
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_EQ(answers[0].outcome, Outcome::unsaved);
    files.freeBytes = std::numeric_limits<std::size_t>::max();
    platform.time.advance(StoreFile::retryInterval + 0.1);
    EXPECT_NE(todosFile().find("No room"), std::string::npos);
}

TEST_F(ChangeRequestsTest, RefusesWhatIsNotItsBusiness) {
    const Uuid id = Uuid::random();
    StoreChange late = change("add", id, "x");
    late.expires = platform.clock.now() - 0.001;
    StoreChange elsewhere = change("add", id, "x");
    elsewhere.folder = "/elsewhere";
    StoreChange nowhere = change("add", id, "x");
    nowhere.folder.clear();
    StoreChange huge = change("add", id, std::string(ChangeRequests::maximumTextBytes + 1, 'x'));
    StoreChange noId = change("add", id, "x");
    noId.id = "7";
    StoreChange noKey = change("prio", id, "x");
    noKey.subject = StoreChange::Subject::flag;
    noKey.id.clear();
    const std::pair<StoreChange, Outcome> cases[] = {
        {late, Outcome::late},
        {elsewhere, Outcome::otherFolder},
        {nowhere, Outcome::otherFolder},
        {huge, Outcome::invalid},
        {noId, Outcome::invalid},
        {noKey, Outcome::invalid},
        {change("done", id), Outcome::noSuchTodo},
        {change("add", id, " \n"), Outcome::invalid},
    };
    for (const auto& [request, outcome] : cases) {
        answers.clear();
        ask(request);
        ASSERT_EQ(answers.size(), 1U) << request.verb;
        EXPECT_EQ(answers[0].outcome, outcome) << request.verb << request.folder;
    }
    EXPECT_TRUE(model->todoStore().todos().empty());
}

}  // namespace
}  // namespace sunpane
