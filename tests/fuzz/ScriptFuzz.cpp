#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "linux/scripts/Interpreter.h"
#include "linux/scripts/Parser.h"
#include "support/ModelObjects.h"

// A script that does not compile touches nothing, and whatever compiles ends, with the same result each time.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sunpane::scripts;
    const std::string_view source(reinterpret_cast<const char*>(data), size);
    auto host = sampleMachine();
    const bool compiles = parseScript(source).has_value();
    const auto result = runScript(source, host);
    if (!compiles && (result || !host.applications["Spotify"]->performed.empty())) std::abort();
    auto other = sampleMachine();
    const auto again = runScript(source, other);
    if (result.has_value() != again.has_value()) std::abort();
    if (result && result->index() != again->index()) std::abort();
    return 0;
}
