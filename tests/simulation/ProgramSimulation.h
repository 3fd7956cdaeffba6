#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "ProgramRules.h"
#include "SimulatedProgram.h"

namespace sunpane::testing {

/// The whole program but for its windows and adapters: a user who hovers, swipes, captures, edits, ticks, takes back
/// and goes away, an agent that writes, rewrites and deletes, calendars and players that change, and a machine that
/// sleeps, travels, loses its screens, runs out of disk, sets its clock back and dies. After every step the rules are
/// checked.
class Simulation {
public:
    explicit Simulation(std::uint64_t seed);
    ~Simulation() { program_.reset(); }

    /// From one morning to the next.
    void day();

    const std::vector<std::string>& log() const { return log_; }
    std::size_t steps() const { return steps_; }

private:
    std::uint64_t below(std::uint64_t bound) { return random_() % bound; }
    bool chance(std::uint64_t oneIn) { return below(oneIn) == 0; }
    double fraction() { return static_cast<double>(below(1'000'000)) / 1e6; }
    template <class T, std::size_t n>
    const T& pick(const T (&list)[n]) {
        return list[below(n)];
    }
    Instant now() const { return world_.platform.clock.now(); }
    NotchViewModel& model() { return program_->model; }
    TodoStore& todos() { return program_->model.todoStore(); }
    bool hasPanel() const { return world_.windows.count() == 1; }

    void note(std::string what);
    void settle(std::string_view what);

    std::string act();

    // The user's pointer, and what else opens and folds the panel.
    std::string point();
    std::string hover();
    std::string leave();
    std::string turnAway();
    std::string quickCapture();
    std::string menu();
    // Cards.
    std::string onCards();
    struct Flags {
        bool prio, cleared, hidden;
        friend bool operator==(const Flags&, const Flags&) = default;
    };
    Flags flagsOf(const BriefingItem& item);
    std::string swipe(const BriefingItem& item);
    std::string takeBack();
    // Todos.
    std::string onTodos();
    std::string edit(const Todo& todo);
    std::string clickNotification();

    // The agent.
    std::string text();
    std::string briefing();
    std::string agent();
    // Calendars and players.
    std::string calendar();
    Instant soon();
    std::string players();
    // The desktop.
    std::string desktop();
    std::string changeScreens();
    std::string changeFolder();
    // The machine.
    std::string machine();
    std::string sleep(Seconds span);
    std::string beginFault();
    void endFault();
    void prepareEnd();
    std::string restart();
    std::string crash();
    void end();

    void startAgain();
    void start();
    // Nobody does anything for so long that all that was under way is over.
    void rest();

    static constexpr std::size_t keptLines = 400;

    std::mt19937_64 random_;
    World world_;
    std::unique_ptr<Program> program_;
    ProgramRules rules_{world_};
    std::vector<Todo> lastTodos_;
    FlagState lastFlags_;
    bool isMenuOpen_ = false;
    bool isAway_ = false;
    bool hasFault_ = false;
    std::vector<std::string> log_;
    std::size_t steps_ = 0;
};

}  // namespace sunpane::testing
