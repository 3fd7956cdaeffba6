#include "ProgramSimulation.h"

#include <chrono>
#include <cmath>
#include <iostream>

#include "SeededRuns.h"
#include "base/Dates.h"

namespace sunpane::testing {

Simulation::Simulation(std::uint64_t seed) : random_(seed) {
    static constexpr CalendarAccess accesses[] = {CalendarAccess::full, CalendarAccess::denied,
                                                  CalendarAccess::notDetermined};
    world_.calendars.status = accesses[below(3)];
    start();
    settle("start");
}

void Simulation::day() {
    for (auto steps = 15 + below(40); steps > 0; --steps) {
        note(act());
        settle("");
        if (chance(8)) rest();
    }
    rest();
    endFault();
    note(sleep(3600.0 * (5 + static_cast<double>(below(9)))));
    settle("");
}

void Simulation::note(std::string what) {
    ++steps_;
    log_.push_back(LocalCalendar(world_.platform.clock).iso8601(now()) + " " + std::move(what));
    if (log_.size() > keptLines) log_.erase(log_.begin(), log_.begin() + keptLines / 2);
}

void Simulation::settle(std::string_view what) {
    if (!what.empty()) note(std::string(what));
    world_.platform.time.runPending();
    rules_.check(*program_);
    // Most steps follow each other as fast as a hand moves, some after a while.
    static constexpr Seconds pauses[] = {0, 0.02, 0.1, 0.3, 0.5, 1, 2, 7, 25, 70};
    world_.platform.time.advance(pick(pauses) * (1 + fraction()));
    rules_.check(*program_);
}

std::string Simulation::act() {
    switch (below(11)) {
        case 0:
        case 1:
        case 2:
            return point();
        case 3:
        case 4:
            return onCards();
        case 5:
        case 6:
            return onTodos();
        case 7:
            return agent();
        case 8:
            return chance(2) ? calendar() : players();
        case 9:
            return desktop();
        default:
            return machine();
    }
}

void Simulation::startAgain() {
    start();
    world_.platform.time.runPending();
}

void Simulation::start() {
    program_ = std::make_unique<Program>(world_);
    require(todos().todos() == lastTodos_, "the next start finds every todo");
    require(model().flagStore().state() == lastFlags_, "the next start finds every flag");
    rules_.follow(*program_);
    program_->start();
}

void Simulation::rest() {
    endFault();
    if (isMenuOpen_) menu();
    if (hasPanel()) {
        const Rect panel = world_.windows.last->rectangle;
        world_.pointer.moveTo({panel.minX() - 100 - fraction(), panel.minY() - 100});
    }
    world_.platform.time.advance(NotchController::keepOpenForEditing + FolderBriefingProvider::pollInterval + 2);
    // A pointer that has not moved since folds nothing.
    leave();
    world_.platform.time.advance(NotchController::settledDelay + NotchViewModel::storeDebounce + 3);
    note("rest");
    rules_.check(*program_);
    rules_.checkAtRest(*program_);
}

}  // namespace sunpane::testing

/// Usage: sunpane_program_simulation [--seed FIRST] [--seeds COUNT] [--days DAYS]
int main(int argc, char** argv) {
    using sunpane::testing::Simulation;
    const sunpane::testing::SeededRuns runs(10, 10, "--days", argc, argv);
    const auto begin = std::chrono::steady_clock::now();
    std::size_t steps = 0;
    constexpr std::size_t toldLines = 80;
    const bool held = runs.run<Simulation>(
        toldLines, [](Simulation& each) { each.day(); }, [&](const Simulation& each) { steps += each.steps(); });
    if (!held) return 1;
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    std::cout << runs.seeds << " seeds of " << runs.rounds << " days, " << steps << " steps in "
              << std::lround(took.count()) << " s: every rule held\n";
    return 0;
}
