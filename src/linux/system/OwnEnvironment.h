#pragma once

#include <string>
#include <vector>

namespace sunpane {

/// Sets a variable of the environment that libraries of this program read, and leaves one that is set as it is. Only
/// before the first thread starts: others may read the environment at any time later.
void setOwnVariable(const std::string& name, const std::string& value);

/// What `setOwnVariable` set. Programs that this one starts must not see it. Any thread.
const std::vector<std::string>& ownVariables();

/// The environment for a program that this one starts, as `posix_spawn` takes it. Valid while the environment stays as
/// it is. Any thread.
std::vector<char*> environmentForOthers();

}  // namespace sunpane
