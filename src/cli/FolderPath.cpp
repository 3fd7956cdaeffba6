#include "cli/FolderPath.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace sunpane::cli {

std::string absoluteFolder(const std::string& path) {
    if (path.empty()) return path;
    const char* home = std::getenv("HOME");
    const bool isBelowHome = path == "~" || path.starts_with("~/");
    std::error_code error;
    const std::filesystem::path absolute =
        std::filesystem::absolute(isBelowHome && home != nullptr ? home + path.substr(1) : path, error);
    if (error) return path;
    std::string folder = absolute.lexically_normal().string();
    if (folder.size() > 1 && folder.ends_with('/')) folder.pop_back();
    return folder;
}

}  // namespace sunpane::cli
