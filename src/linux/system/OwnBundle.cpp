#include "linux/system/OwnBundle.h"

#include <filesystem>
#include <system_error>

namespace sunpane {

std::string bundlePathOf(const std::string& program) {
    const std::filesystem::path folder = std::filesystem::path(program).parent_path();
    for (auto place = folder; place.has_relative_path(); place = place.parent_path()) {
        if (place.extension() == ".app") return place.string();
    }
    return folder.string();
}

std::string ownBundlePath() {
    std::error_code error;
    return bundlePathOf(std::filesystem::read_symlink("/proc/self/exe", error).string());
}

}  // namespace sunpane
