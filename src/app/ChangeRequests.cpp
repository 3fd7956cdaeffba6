#include "app/ChangeRequests.h"

#include <optional>
#include <utility>

#include "app/CardActions.h"
#include "app/TodoActions.h"
#include "base/Text.h"
#include "base/Uuid.h"

namespace sunpane {
namespace {

using Outcome = StoreChangeAnswer::Outcome;

}  // namespace

ChangeRequests::ChangeRequests(const Collaborators& collaborators)
    : with_(collaborators),
      requests_(with_.requests.serve([this](const StoreChange& change, StoreRequests::Reply reply) {
          const StoreChangeAnswer answer = make(change);
          if (answer.outcome != Outcome::written) return reply(answer);
          answerWhenWritten(change, answer, std::move(reply));
      })) {}

StoreChangeAnswer ChangeRequests::make(const StoreChange& change) {
    if (with_.clock.now() > change.expires) return {Outcome::late, 0, {}};
    if (change.text.size() > maximumTextBytes || change.id.size() > maximumTextBytes) return {};
    if (!isOurs(change.folder)) return {Outcome::otherFolder, 0, {}};
    return change.subject == StoreChange::Subject::todo ? changeTodo(change) : changeFlag(change);
}

bool ChangeRequests::isOurs(const std::string& folder) {
    if (folder.empty()) return false;
    return with_.files.canonicalPath(pathInside(folder, TodoStore::fileName)) ==
           with_.files.canonicalPath(with_.viewModel.todoStore().fileURL());
}

StoreChangeAnswer ChangeRequests::changeTodo(const StoreChange& change) {
    const auto id = Uuid::parse(change.id);
    if (!id) return {};
    TodoStore& todos = with_.viewModel.todoStore();
    switch (todo_actions::perform(todos, change.verb, *id, change.text, with_.undo)) {
        case todo_actions::Outcome::invalid:
            return {};
        case todo_actions::Outcome::noSuchTodo:
            return {Outcome::noSuchTodo, 0, {}};
        case todo_actions::Outcome::done:
            break;
    }
    const auto index = todos.indexOf(*id);
    if (!index) return {Outcome::written, 0, {}};
    return {Outcome::written, *index + 1, encodeTodo(todos.todos()[*index])};
}

StoreChangeAnswer ChangeRequests::changeFlag(const StoreChange& change) {
    const bool isOn = change.verb == "prio";
    if ((!isOn && change.verb != "unprio") || change.id.empty()) return {};
    ItemFlagStore& flags = with_.viewModel.flagStore();
    const std::string key = text::toValidUtf8(change.id);
    const auto set = [&] { flags.setPrio(key, change.text, isOn); };
    // One that is asked for twice must not have to be taken back twice.
    if (flags.isPrio(key) == isOn) {
        set();
    } else {
        card_actions::flagWithUndo(with_.viewModel.weakFlagStore(), set, with_.undo);
    }
    return {Outcome::written, 0, {}};
}

void ChangeRequests::answerWhenWritten(const StoreChange& change, const StoreChangeAnswer& answer,
                                       StoreRequests::Reply reply) {
    // Only the files that hold the change count: what is wrong with another one is not this request's business. A
    // todo's star may have flagged a card.
    const bool isTodo = change.subject == StoreChange::Subject::todo;
    const bool mayFlag = !isTodo || change.verb == "prio" || change.verb == "unprio";
    const auto entry = std::make_shared<Waiting>(Waiting{std::move(reply), answer, {}, {}, {}});
    const std::weak_ptr<Waiting> weak = entry;
    waiting_.push_back(entry);
    const auto giveUp = [this, weak, isTodo, mayFlag] {
        const bool isSafe =
            (!isTodo || with_.viewModel.todoStore().isSafe()) && (!mayFlag || with_.viewModel.flagStore().isSafe());
        finish(weak, isSafe ? Outcome::kept : Outcome::unsaved);
    };
    entry->patience = with_.runLoop.after(patience, giveUp);
    const auto waitForFlags = [this, weak] {
        const auto waiting = weak.lock();
        if (!waiting) return;
        waiting->flagsWritten =
            with_.viewModel.flagStore().whenWritten([this, weak] { finish(weak, Outcome::written); });
    };
    if (isTodo) {
        entry->todosWritten = with_.viewModel.todoStore().whenWritten([this, weak, mayFlag, waitForFlags] {
            if (mayFlag) return waitForFlags();
            finish(weak, Outcome::written);
        });
    } else {
        waitForFlags();
    }
    if (waiting_.size() > maximumWaiting) giveUp();
}

void ChangeRequests::finish(const std::weak_ptr<Waiting>& waiting, StoreChangeAnswer::Outcome outcome) {
    const auto entry = waiting.lock();
    if (!entry) return;
    waiting_.remove(entry);
    StoreChangeAnswer answer = entry->answer;
    answer.outcome = outcome;
    std::exchange(entry->reply, nullptr)(answer);
}

}  // namespace sunpane
