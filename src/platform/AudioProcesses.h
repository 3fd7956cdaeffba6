#pragma once

#include <optional>
#include <string>
#include <vector>

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

/// Who uses the sound system. Main thread only. Answers at once from what is known; listening happens in the
/// background.
class AudioProcesses {
public:
    virtual ~AudioProcesses() = default;

    /// Whether the sound system was asked yet, with or without success. Until then the list is absent.
    virtual bool loaded() const = 0;

    /// Absent when the list cannot be read, as without a sound system.
    virtual std::optional<std::vector<AudioProcess>> list() const = 0;
};

}  // namespace sunpane
