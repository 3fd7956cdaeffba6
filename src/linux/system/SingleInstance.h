#pragma once

#include <string>

#include "base/Instant.h"

namespace sunpane {

/// Sees to it that one copy of the program runs for this user: the one that was started last.
///
/// The running copy holds a lock on a file, and the kernel tells who does: there is nothing to go stale, and nobody is
/// known by his name alone. The lock goes with the process, so a copy that has it knows that the one before is gone,
/// with all that it still had to write. Main thread only.
class SingleInstance {
public:
    /// So long (s) may the older copy take to end in good order before it is killed, and to be gone after that.
    static constexpr Seconds graceTime = 5;
    static constexpr Seconds killTime = 5;

    enum class Outcome {
        /// This is the only copy; it stays so as long as this object lives, or until a newer one asks it to end.
        alone,
        /// A copy that was started after this one runs: this one has to give way.
        newerRuns,
        /// Another copy runs and can be neither asked nor killed, as one in a container.
        outOfReach,
        /// The file cannot be made, so nobody can tell.
        unknown,
    };

    /// The file is created when it is missing and stays.
    explicit SingleInstance(std::string path) : path_(std::move(path)) {}
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    /// `$XDG_RUNTIME_DIR/app.dawnly.Dawnly.lock`
    static std::string defaultPath();

    /// Ends the copy that runs and waits for that, at most `grace` and `killTime` together.
    Outcome replaceOther(Seconds grace = graceTime);

private:
    std::string path_;
    int file_ = -1;
};

}  // namespace sunpane
