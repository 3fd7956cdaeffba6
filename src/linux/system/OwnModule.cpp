#include "linux/system/OwnModule.h"

#include <dlfcn.h>

#include <array>
#include <filesystem>
#include <system_error>

namespace sunpane {

void* loadOwnModule(const std::string& name, const char* entry) {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) return nullptr;
    const std::string file = name + ".so";
    // Beside the program as built, and where an installation puts it.
    const std::array places{program.parent_path() / file,
                            program.parent_path().parent_path() / "lib" / "dawnly" / file};
    for (const auto& place : places) {
        // Never unloaded: libraries may register types, or threads' ends, for as long as the process lives.
        void* module = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
        if (module == nullptr) continue;
        if (void* found = dlsym(module, entry)) return found;
    }
    return nullptr;
}

}  // namespace sunpane
