#pragma once

#include <string>

/// Where the program keeps its own files: the XDG Base Directory Specification, version 0.8. An unset, empty or
/// relative variable counts as its default.
namespace sunpane::xdg {

/// `$HOME`, or the user database's entry when that is not set.
std::string homeFolder();
/// `$XDG_CONFIG_HOME`, where every program has a folder of its own.
std::string configHome();
/// `$XDG_CONFIG_HOME/dawnly`
std::string configFolder();
/// `$XDG_DATA_HOME/dawnly`
std::string dataFolder();
/// `$XDG_STATE_HOME/dawnly`
std::string stateFolder();
/// `$XDG_RUNTIME_DIR`, or the temporary folder when there is none.
std::string runtimeFolder();

}  // namespace sunpane::xdg
