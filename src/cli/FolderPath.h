#pragma once

#include <string>

namespace sunpane::cli {

/// The folder that the user means by `path`, for whoever works in another folder: an absolute path without "." and
/// "..", links kept. A "~/" that the shell left, because it was quoted, is the user's home. An empty path stays empty.
std::string absoluteFolder(const std::string& path);

}  // namespace sunpane::cli
