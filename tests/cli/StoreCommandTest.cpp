#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "cli/Command.h"
#include "core/stores/FlagFile.h"
#include "core/stores/TodoFile.h"
#include "support/CommandFixture.h"

namespace sunpane::cli {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class StoreCommandTest : public testing::CommandFixture {
protected:
    StoreCommandTest() {
        disk.makeFolder("/home");
        defaults.set("briefingsFolderPath", std::string("/home/briefings"));
    }
    int run(std::vector<std::string> arguments) {
        Environment surroundings = environment();
        surroundings.stateFolder = "/home/state";
        if (program) surroundings.askProgram = program;
        return runIn(std::move(surroundings), arguments);
    }
    TodoState todos() const { return *decodeTodos(*disk.content("/home/briefings/todos.json")); }
    FlagState flags() const { return *decodeFlags(*disk.content("/home/briefings/itemflags.json")); }

    std::function<ProgramAnswer(const StoreChange&)> program;
};

TEST_F(StoreCommandTest, EveryTodoCommandIsInTheFileWhenItEnds) {
    EXPECT_EQ(run({"todo", "add", "buy", "milk"}), success);
    EXPECT_EQ(out.str(), "1 [ ] buy milk\n");
    EXPECT_EQ(run({"todo", "add", "call\x1b[2J mum"}), success);
    EXPECT_EQ(out.str().find('\x1b'), std::string::npos);
    EXPECT_EQ(run({"todo", "prio", "2"}), success);
    EXPECT_EQ(run({"todo", "rename", "1", "call\r\n\u2028", "dad"}), success);
    EXPECT_EQ(todos().todos[0].text, "call  dad");
    EXPECT_EQ(run({"todo", "rename", "1", "call\ndad"}), success);
    EXPECT_EQ(out.str(), "1 [ ] ! call dad\n");
    EXPECT_EQ(run({"todo", "done", "1"}), success);
    EXPECT_EQ(run({"todo", "done", "2"}), success) << "done already";
    EXPECT_EQ(todos().todos[1].text, "call dad");
    EXPECT_TRUE(todos().todos[1].done);
    EXPECT_EQ(run({"todo", "open", "2"}), success);
    EXPECT_FALSE(todos().todos[0].done);
    EXPECT_EQ(run({"todo", "list", "--json"}), success);
    EXPECT_EQ(nlohmann::json::parse(out.str()).size(), 2U);
    EXPECT_EQ(run({"todo", "delete", "2"}), success);
    EXPECT_EQ(todos().dismissed, std::vector<std::string>{"buy milk"});
    for (const char* number : {"0", "2", "-1", "x", "99999999999999999999"}) {
        EXPECT_EQ(run({"todo", "delete", number}), negative) << number;
    }
    EXPECT_EQ(todos().todos.size(), 1U);
}

TEST_F(StoreCommandTest, TheRunningProgramIsAskedFirstAndOnlyItsYesCounts) {
    using Outcome = StoreChangeAnswer::Outcome;
    using Reach = ProgramAnswer::Reach;
    ASSERT_EQ(run({"todo", "add", "first"}), success);
    const Todo first = todos().todos[0];
    ProgramAnswer answer;
    std::vector<StoreChange> asked;
    program = [&](const StoreChange& change) { return asked.push_back(change), answer; };

    answer = {Reach::answered, {Outcome::written, 4, encodeTodo(Todo::make("second", platform.clock.now()))}};
    EXPECT_EQ(run({"todo", "--folder", "/home/./briefings", "add", "sec\xff", "ond"}), success);
    EXPECT_EQ(out.str(), "4 [ ] second\n");
    EXPECT_EQ(todos().todos.size(), 1U) << "the program writes it";
    EXPECT_EQ(asked.back().folder, disk.canonicalPath("/home/./briefings"));
    EXPECT_EQ(asked.back().text, "sec\uFFFD ond");
    EXPECT_GT(asked.back().expires, platform.clock.now());
    answer.answer.outcome = Outcome::kept;
    EXPECT_EQ(run({"todo", "add", "second"}), failure);
    EXPECT_EQ(out.str(), "[ ] second\n") << "the file's list has another fourth";
    answer.answer = {Outcome::unsaved, 0, ""};
    EXPECT_EQ(run({"todo", "delete", "1"}), unsaved);
    EXPECT_THAT(err.str(), HasSubstr("memory"));
    answer.answer = {Outcome::kept, 0, ""};
    EXPECT_EQ(run({"todo", "delete", "1"}), failure);
    EXPECT_EQ(asked.back().id, first.id.toString());
    EXPECT_THAT(err.str(), HasSubstr("cannot be written"));
    EXPECT_EQ(run({"flags", "prio", "key", "a", "card"}), failure);
    EXPECT_EQ(asked.back().subject, StoreChange::Subject::flag);
    EXPECT_FALSE(disk.exists("/home/briefings/itemflags.json"));

    std::size_t count = 1;
    for (const ProgramAnswer& no : {ProgramAnswer{}, ProgramAnswer{Reach::silent, {}},
                                    ProgramAnswer{Reach::answered, {Outcome::otherFolder, 0, ""}},
                                    ProgramAnswer{Reach::answered, {Outcome::late, 0, ""}}}) {
        answer = no;
        EXPECT_EQ(run({"todo", "add", "again"}), success);
        EXPECT_EQ(todos().todos.size(), ++count);
        EXPECT_EQ(todos().todos.back().id.toString(), asked.back().id) << "so that it is known again";
        EXPECT_EQ(err.str().empty(), no.reach == Reach::nobody || no.answer.outcome == Outcome::late);
    }
    EXPECT_EQ(run({"todo", "prio", "1"}), success);
    EXPECT_EQ(asked.back().verb, "prio");
    EXPECT_EQ(run({"todo", "prio", "1"}), success);
    EXPECT_EQ(asked.back().verb, "unprio");
    EXPECT_FALSE(todos().todos[0].isPrio());
}

TEST_F(StoreCommandTest, SaysWhenTheProgramStillKeepsAnotherFolder) {
    using Outcome = StoreChangeAnswer::Outcome;
    disk.createFolders("/home/briefings");
    Outcome outcome = Outcome::otherFolder;
    program = [&](const StoreChange&) { return ProgramAnswer{ProgramAnswer::Reach::answered, {outcome, 0, ""}}; };
    const std::vector<std::vector<std::string>> commands{{"todo", "list"},
                                                         {"todo", "add", "x"},
                                                         {"todo", "done", "9"},
                                                         {"flags", "list"},
                                                         {"flags", "prio", "key", "card"},
                                                         {"feedback"}};
    for (std::vector<std::string> words : commands) {
        run(words);
        EXPECT_THAT(err.str(), HasSubstr("old folder until its next start")) << words[0];
        words.insert(words.begin() + 1, {"--folder", "/home/briefings"});
        run(words);
        EXPECT_THAT(err.str(), Not(HasSubstr("old folder"))) << "the user knows which";
    }
    outcome = Outcome::noSuchTodo;
    run({"todo", "list"});
    EXPECT_EQ(err.str(), "");
}

TEST_F(StoreCommandTest, WhatTheProgramDidWithoutAnAnswerIsNotUndone) {
    using Reach = ProgramAnswer::Reach;
    for (const Reach reach : {ProgramAnswer{}.reach, Reach::silent}) {
        for (const std::string verb : {"done", "open", "prio"}) {
            SCOPED_TRACE(verb);
            disk.createFolders("/home/briefings");
            Todo todo = Todo::make("a todo", platform.clock.now());
            todo.done = verb == "open";
            disk.writeExternally("/home/briefings/todos.json", encodeTodos({{todo}, "", {}}));
            program = [&](const StoreChange&) {
                todo.done = verb == "done";
                todo.prio = verb == "prio" ? std::optional(true) : std::nullopt;
                disk.writeExternally("/home/briefings/todos.json", encodeTodos({{todo}, "", {}}));
                return ProgramAnswer{reach, {}};
            };
            EXPECT_EQ(run({"todo", verb, "1"}), success);
            ASSERT_EQ(todos().todos.size(), 1U);
            EXPECT_EQ(todos().todos[0].done, verb == "done");
            EXPECT_EQ(todos().todos[0].isPrio(), verb == "prio");
        }
    }
}

TEST_F(StoreCommandTest, ATodoThatWasDeletedMeanwhileIsMissedUnlessThatWasAskedFor) {
    using Outcome = StoreChangeAnswer::Outcome;
    disk.createFolders("/home/briefings");
    for (const auto& answer :
         {ProgramAnswer{}, ProgramAnswer{ProgramAnswer::Reach::answered, {Outcome::noSuchTodo, 0, ""}}}) {
        for (const std::string verb : {"done", "open", "prio", "rename", "delete"}) {
            SCOPED_TRACE(verb);
            const Todo todo = Todo::make("a todo", platform.clock.now());
            disk.writeExternally("/home/briefings/todos.json", encodeTodos({{todo}, "", {}}));
            program = [&](const StoreChange&) {
                disk.writeExternally("/home/briefings/todos.json", encodeTodos({{}, "", {"a todo"}}));
                return answer;
            };
            std::vector<std::string> words{"todo", verb, "1"};
            if (verb == "rename") words.emplace_back("another text");
            EXPECT_EQ(run(words), verb == "delete" ? success : negative);
            EXPECT_EQ(err.str(), verb == "delete" ? "" : "dawnlyctl todo: there is no todo 1\n");
            EXPECT_EQ(out.str(), "");
            EXPECT_TRUE(todos().todos.empty());
        }
    }
}

TEST_F(StoreCommandTest, TheStarOfATodoFromACardFlagsTheCard) {
    disk.createFolders("/home/briefings");
    Todo todo = Todo::make("from a card", platform.clock.now());
    todo.sourceItemKey = "the-card";
    disk.writeExternally("/home/briefings/todos.json", encodeTodos({{todo}, "", {}}));
    EXPECT_EQ(run({"todo", "prio", "1"}), success);
    EXPECT_EQ(flags().prio.at("the-card"), "from a card");
}

TEST_F(StoreCommandTest, FlagsKeepWhatTheProgramToldTheAgent) {
    disk.createFolders("/home/briefings");
    disk.writeExternally("/home/briefings/feedback.json", R"({"untouched":["a card"],"reminders":["a line"],"x":1})");
    bool everForgotten = false;
    int writes = 0;
    disk.afterWrite = [&](const std::string& path) {
        ++writes;
        if (!path.ends_with("/feedback.json")) return;
        everForgotten = everForgotten || disk.content(path)->find("a card") == std::string::npos;
    };
    EXPECT_EQ(run({"flags", "--folder", "/home/briefings", "prio", "key", "some", "text"}), success);
    EXPECT_EQ(flags().prio.at("key"), "some text");
    EXPECT_GT(std::exchange(writes, 0), 0);
    EXPECT_EQ(run({"flags", "list"}), success);
    EXPECT_THAT(out.str(), HasSubstr("prio  key  some text"));
    EXPECT_EQ(writes, 0) << "who lists changes nothing";
    EXPECT_EQ(run({"feedback"}), success);
    const auto feedback = nlohmann::json::parse(out.str());
    EXPECT_EQ(feedback["untouched"], nlohmann::json{"a card"});
    EXPECT_EQ(feedback["reminders"], nlohmann::json{"a line"});
    EXPECT_EQ(feedback["prio"][0]["text"], "some text");
    EXPECT_EQ(run({"flags", "unprio", "key"}), success);
    EXPECT_TRUE(flags().prio.empty());
    EXPECT_FALSE(everForgotten) << "not even for a moment";

    // Cut off as if another program were at it, which its journal makes good.
    const std::string whole = *disk.content("/home/briefings/feedback.json");
    disk.writeExternally("/home/briefings/feedback.json", whole.substr(0, whole.size() / 2));
    EXPECT_EQ(run({"flags", "prio", "key", "text"}), success);
    EXPECT_FALSE(everForgotten);
    EXPECT_THAT(*disk.content("/home/briefings/feedback.json"), HasSubstr("a line"));
}

TEST_F(StoreCommandTest, AMistypedFolderIsMadeByWhatAddsToItOnly) {
    for (std::vector<std::string> words : std::vector<std::vector<std::string>>{
             {"todo", "list"}, {"todo", "done", "1"}, {"flags", "list"}, {"flags", "unprio", "key"}, {"feedback"}}) {
        words.insert(words.begin() + 1, {"--folder", "/home/typo"});
        EXPECT_EQ(run(words), failure) << words[0];
        EXPECT_EQ(err.str(), "dawnlyctl " + words[0] + ": there is no folder /home/typo\n");
        EXPECT_FALSE(disk.exists("/home/typo"));
    }
    EXPECT_EQ(run({"todo", "--folder", "/home/new", "add", "x"}), success);
    EXPECT_EQ(run({"flags", "--folder", "/home/newer", "prio", "key", "x"}), success);
    EXPECT_EQ(run({"todo", "list"}), success) << "the chosen folder, which is made";
}

TEST_F(StoreCommandTest, WrongUsageChangesNothing) {
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{{"todo"},
                                                                                       {"todo", "add"},
                                                                                       {"todo", "add", "  "},
                                                                                       {"todo", "add", "\x1b\u200B\n"},
                                                                                       {"todo", "done"},
                                                                                       {"todo", "frob"},
                                                                                       {"todo", "done", "1", "2"},
                                                                                       {"todo", "--wrong"},
                                                                                       {"todo", "list", "--folder"},
                                                                                       {"flags"},
                                                                                       {"flags", "prio", "key"},
                                                                                       {"flags", "unprio"},
                                                                                       {"feedback", "x"}}) {
        EXPECT_EQ(run(words), failure);
        EXPECT_THAT(err.str(), HasSubstr("usage:"));
    }
    EXPECT_FALSE(disk.exists("/home/briefings"));
}

TEST_F(StoreCommandTest, SaysWhenAChangeCouldNotBeWrittenAndKeepsIt) {
    disk.createFolders("/home/briefings");
    disk.readOnlyFolders.insert("/home/briefings");
    EXPECT_EQ(run({"todo", "add", "later"}), failure);
    EXPECT_THAT(err.str(), HasSubstr("kept"));
    disk.readOnlyFolders.clear();
    EXPECT_EQ(run({"todo", "list"}), success);
    EXPECT_EQ(out.str(), "1 [ ] later\n");
}

TEST_F(StoreCommandTest, SaysWhenOnlyTheFeedbackCouldNotBeWritten) {
    disk.createFolders("/home/briefings");
    disk.forbiddenFiles.insert("/home/briefings/feedback.json");
    EXPECT_EQ(run({"flags", "prio", "key", "a", "card"}), failure);
    EXPECT_EQ(flags().prio.at("key"), "a card");
    EXPECT_THAT(err.str(),
                HasSubstr("/home/briefings/feedback.json cannot be written now; everything else is written"));
    disk.forbiddenFiles.clear();
    disk.readOnlyFolders.insert("/home/briefings");
    EXPECT_EQ(run({"flags", "unprio", "key"}), failure);
    EXPECT_THAT(err.str(), HasSubstr("the change is kept"));
    disk.readOnlyFolders.clear();
    EXPECT_EQ(run({"flags", "prio", "other", "card"}), success);
    EXPECT_EQ(flags().prio.count("key"), 0U);
    EXPECT_THAT(*disk.content("/home/briefings/feedback.json"), HasSubstr("card"));
}

TEST_F(StoreCommandTest, DoesNotClaimToKeepWhatAFullDiskCannotTake) {
    disk.createFolders("/home/briefings");
    disk.freeBytes = 0;
    EXPECT_EQ(run({"todo", "add", "gone"}), unsaved);
    EXPECT_EQ(out.str(), "");
    EXPECT_THAT(err.str(), HasSubstr("lost"));
    EXPECT_THAT(disk.filesIn("/home/state"), ::testing::IsEmpty());
    disk.freeBytes = std::numeric_limits<std::size_t>::max();
    EXPECT_EQ(run({"todo", "list"}), success);
    EXPECT_EQ(out.str(), "");
}

}  // namespace
}  // namespace sunpane::cli
