#pragma once

#include <string>

namespace sunpane {

/// Loads a module of ours, a library that brings others with it that a machine may lack or a run may never need.
/// Returns what it exports as `entry`; null when the module, or a library that it needs, is missing. Any thread.
///
/// The module stays for as long as the process lives.
void* loadOwnModule(const std::string& name, const char* entry);

}  // namespace sunpane
