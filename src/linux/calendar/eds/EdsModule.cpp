#include "linux/calendar/eds/EdsModule.h"

#include <dlfcn.h>

#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

namespace sunpane {
namespace {

EdsModuleEntry loadModule() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) return nullptr;
    // Beside the program as built, and where an installation puts it.
    const std::array places{program.parent_path() / "dawnly-eds.so",
                            program.parent_path().parent_path() / "lib" / "dawnly" / "dawnly-eds.so"};
    for (const auto& place : places) {
        // Never unloaded: its libraries register types for as long as the process lives.
        void* module = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
        if (module == nullptr) continue;
        if (void* entry = dlsym(module, edsModuleEntry)) return reinterpret_cast<EdsModuleEntry>(entry);
    }
    return nullptr;
}

}  // namespace

CalendarServiceMaker edsCalendars() {
    return [](const std::function<void()>& changed) -> std::unique_ptr<CalendarService> {
        const EdsModuleEntry make = loadModule();
        return std::unique_ptr<CalendarService>(make != nullptr ? make(&changed) : nullptr);
    };
}

}  // namespace sunpane
