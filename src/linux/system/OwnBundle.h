#pragma once

#include <string>

namespace sunpane {

/// The folder that the running program is installed in as a whole, without a slash at its end. Its name ends in ".app",
/// as in "/usr/lib/dawnly/Dawnly.app" or "/home/you/.local/lib/Dawnly.app". A program that runs from anywhere else,
/// such as a build tree, has none: then this is the folder of the executable. Links to the program do not matter. Any
/// thread.
std::string ownBundlePath();

/// The same for the program at an absolute path without links.
std::string bundlePathOf(const std::string& program);

}  // namespace sunpane
