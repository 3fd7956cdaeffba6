#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "base/Instant.h"

namespace sunpane {

/// What a script ended with: text (valid UTF-8) or a Boolean. A script that ends without a value gives empty text.
using ScriptValue = std::variant<std::string, bool>;

/// Runs scripts that ask other applications for something. Called from one thread at a time, the now-playing script
/// queue and never the main thread: a run blocks until the application has answered.
class ScriptRunner {
public:
    /// A run takes no longer (s) than this; an application that has not answered by then made the script fail.
    static constexpr Seconds longestRun = 3;

    virtual ~ScriptRunner() = default;

    /// Nothing when the source does not compile or the script fails: an unknown word, an application that does not
    /// run or does not answer, an operation that was refused. What the script did before it failed stays done.
    virtual std::optional<ScriptValue> run(std::string_view source) = 0;
};

}  // namespace sunpane
