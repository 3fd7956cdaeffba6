#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/Instant.h"

namespace sunpane {

/// A process that uses the sound system.
struct AudioProcess {
    /// That of its application; helpers carry a longer one that begins with it, such as "com.google.Chrome.helper".
    /// Empty when the process belongs to no known application.
    std::string bundleIdentifier;
    /// Whether it is playing sound right now, audible or muted.
    bool runsOutput = false;
    friend bool operator==(const AudioProcess&, const AudioProcess&) = default;
};

/// Who uses the sound system. Called from one thread at a time, the now-playing script queue and never the main thread:
/// blocks until the sound system has answered.
class AudioProcesses {
public:
    /// The sound system may take this long (s) to answer.
    static constexpr Seconds longestAnswer = 0.5;

    virtual ~AudioProcesses() = default;

    /// Absent when the list cannot be read, as without a sound system.
    virtual std::optional<std::vector<AudioProcess>> list() = 0;
};

}  // namespace sunpane
