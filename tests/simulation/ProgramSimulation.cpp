#include "ProgramSimulation.h"

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <iostream>

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

namespace {

bool runSeed(std::uint64_t seed, int days, std::size_t& steps) {
    Simulation simulation(seed);
    for (int day = 0; day < days; ++day) {
        try {
            simulation.day();
        } catch (const Violation& violation) {
            const auto& log = simulation.log();
            for (std::size_t i = log.size() > 80 ? log.size() - 80 : 0; i < log.size(); ++i)
                std::cerr << log[i] << '\n';
            std::cerr << "seed " << seed << ", day " << day << ": broken rule: " << violation.what() << '\n';
            return false;
        }
    }
    steps += simulation.steps();
    return true;
}

}  // namespace
}  // namespace sunpane::testing

/// Usage: sunpane_program_simulation [--seed FIRST] [--seeds COUNT] [--days DAYS]
int main(int argc, char** argv) {
    std::uint64_t first = 1;
    std::uint64_t count = 10;
    int days = 10;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string_view option = argv[i];
        if (option == "--seed") first = std::strtoull(argv[i + 1], nullptr, 10);
        if (option == "--seeds") count = std::strtoull(argv[i + 1], nullptr, 10);
        if (option == "--days") days = std::atoi(argv[i + 1]);
    }
    const auto begin = std::chrono::steady_clock::now();
    std::size_t steps = 0;
    for (std::uint64_t seed = first; seed < first + count; ++seed) {
        if (!sunpane::testing::runSeed(seed, days, steps)) return 1;
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    std::cout << count << " seeds of " << days << " days, " << steps << " steps in " << std::lround(took.count())
              << " s: every rule held\n";
    return 0;
}
