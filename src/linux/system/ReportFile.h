#pragma once

#include <string>

namespace sunpane {

/// Replaces the file at `path`, which may lie in a folder that others write to: a link planted under that name is
/// replaced, never followed. Failures are ignored.
void replaceReport(const std::string& path, const std::string& text);

}  // namespace sunpane
