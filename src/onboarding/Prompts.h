#pragma once

#include <string>
#include <string_view>

/// What the user pastes into the scheduled task of an assistant, so that it writes briefings into the folder. Plain
/// text, in the second person, that can be followed without asking back. Pure functions; any thread.
namespace sunpane::prompts {

/// `folder` is the briefings folder's path; a slash at its end makes no difference.
std::string deliveryBlock(std::string_view folder);
std::string morningTask(std::string_view folder);
std::string eveningTask(std::string_view folder);

}  // namespace sunpane::prompts
