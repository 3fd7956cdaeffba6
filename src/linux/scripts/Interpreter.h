#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "linux/scripts/ScriptObject.h"

namespace sunpane::scripts {

/// A script that does more than this fails. Looking through a thousand tabs takes about a thirtieth of it.
inline constexpr int maximumSteps = 1'000'000;
/// No text that a script makes is longer than this.
inline constexpr std::size_t maximumTextBytes = std::size_t{4} << 20;

/// Compiles and runs a script. What it returns, or else what its last line amounts to; nothing when it does not
/// compile, or fails on its way: then what it did before that stays done. How long it takes is up to the host
/// and its objects.
std::optional<Value> runScript(std::string_view source, Host& host);

}  // namespace sunpane::scripts
