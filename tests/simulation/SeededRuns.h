#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace sunpane::testing {

struct Violation : std::runtime_error {
    using std::runtime_error::runtime_error;
};

inline void require(bool holds, const std::string& rule) {
    if (!holds) throw Violation(rule);
}

/// What the command line of a simulation chooses: `--seed FIRST`, `--seeds COUNT`, and its length in rounds under a
/// name of its own, such as `--days`.
struct SeededRuns {
    std::uint64_t first = 1;
    std::uint64_t seeds;
    int rounds;

    SeededRuns(std::uint64_t usualSeeds, int usualRounds, std::string_view nameOfRounds, int argc, char** argv)
        : seeds(usualSeeds), rounds(usualRounds) {
        for (int i = 1; i + 1 < argc; i += 2) {
            const std::string_view option = argv[i];
            if (option == "--seed") first = std::strtoull(argv[i + 1], nullptr, 10);
            if (option == "--seeds") seeds = std::strtoull(argv[i + 1], nullptr, 10);
            if (option == nameOfRounds) rounds = std::atoi(argv[i + 1]);
        }
    }

    /// Makes a simulation for each seed and calls `round` as often as chosen, then `finish`. Stops at the first broken
    /// rule, tells it with its seed after the last lines of the simulation's `log()`, and returns false.
    template <class Simulation, class Round, class Finish>
    bool run(std::size_t toldLines, const Round& round, const Finish& finish) const {
        for (std::uint64_t seed = first; seed < first + seeds; ++seed) {
            Simulation simulation(seed);
            for (int i = 0; i < rounds; ++i) {
                try {
                    round(simulation);
                } catch (const Violation& violation) {
                    const std::vector<std::string>& log = simulation.log();
                    for (std::size_t line = log.size() - std::min(log.size(), toldLines); line < log.size(); ++line)
                        std::cout << log[line] << '\n';
                    std::cerr << "seed " << seed << ", round " << i << ": broken rule: " << violation.what() << '\n';
                    return false;
                }
            }
            finish(simulation);
        }
        return true;
    }
};

}  // namespace sunpane::testing
