#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "SeededRuns.h"
#include "SimulatedProgram.h"
#include "base/Uuid.h"

namespace sunpane::testing {

/// What must hold of the whole program at any time, and what must hold once it is left alone. Each throws a Violation
/// that names the broken rule.
class ProgramRules {
public:
    explicit ProgramRules(World& world) : world_(world) {}

    /// The program was started: what it does from now on is followed.
    void follow(Program& program);
    /// The program ended.
    void forget();

    /// The user deletes that todo, or gives it another text, in this step.
    void mayLose(const Uuid& todo) { expected_.erase(todo); }

    /// After every step.
    void check(Program& program);

    /// After a time in which nobody did anything, the pointer was away, no menu was open and no disk failed.
    void checkAtRest(Program& program);

private:
    void checkTodos(Program& program);
    void checkFeedback(Program& program) const;
    void checkBriefings(Program& program) const;
    void checkReport(Program& program);

    World& world_;
    struct Expected {
        std::string text;
        bool done = false;
    };
    /// The todos that were there after the last step.
    std::map<Uuid, Expected> expected_;
    std::string lastImportDay_;
    /// Whether it was another one meanwhile, as when midnight passes or the folder changes within one step.
    bool sawAnotherDay_ = false;
    std::shared_ptr<Program*> followed_;
    Subscription modelChanges_;
    Subscription todoChanges_;
    std::string zoneOfLastTodoChange_;
};

}  // namespace sunpane::testing
