#pragma once

#include <chrono>

namespace sunpane {

/// The moment at which something that another program keeps waiting for is given up.
using Deadline = std::chrono::steady_clock::time_point;

inline Deadline deadlineIn(std::chrono::milliseconds time) {
    return std::chrono::steady_clock::now() + time;
}

/// What is left until then, at least zero.
inline std::chrono::microseconds timeLeft(Deadline deadline) {
    const auto left = deadline - std::chrono::steady_clock::now();
    return left.count() <= 0 ? std::chrono::microseconds(0)
                             : std::chrono::duration_cast<std::chrono::microseconds>(left);
}

}  // namespace sunpane
