#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/UserDefaults.h"

namespace sunpane {

/// Where a browser listens for debuggers on this machine.
struct DevToolsEndpoint {
    std::uint16_t port = 0;
    /// The address of the browser as a whole, such as "/devtools/browser/…"; empty when only the port is known.
    std::string browserPath;
    friend bool operator==(const DevToolsEndpoint&, const DevToolsEndpoint&) = default;
};

/// The key of the user's own choice of port, an integer.
inline constexpr std::string_view chromePortKey = "chromeDebuggingPort";

/// Whether a browser's address of itself looks like one.
bool isBrowserPath(std::string_view path);

/// Reads a profile's `DevToolsActivePort` file: the port on its first line, the browser's path on its second. Nothing
/// when it holds anything else.
std::optional<DevToolsEndpoint> parsePortFile(std::string_view content);

/// The first endpoint on which somebody listens: the port that the user set, else the one in the default profile folder
/// of Chrome, else in that of Chromium. Recent browsers open no port for that folder, so for them it has to be set. Any
/// thread; waits for nobody.
std::optional<DevToolsEndpoint> findDevTools(const UserDefaults& defaults);

}  // namespace sunpane
