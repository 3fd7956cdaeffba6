#include "linux/system/OwnEnvironment.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace sunpane {
namespace {

std::vector<std::string>& names() {
    static std::vector<std::string> all;
    return all;
}

}  // namespace

void setOwnVariable(const std::string& name, const std::string& value) {
    if (std::getenv(name.c_str()) != nullptr) return;         // NOLINT(concurrency-mt-unsafe)
    if (setenv(name.c_str(), value.c_str(), 0) != 0) return;  // NOLINT(concurrency-mt-unsafe)
    names().push_back(name);
}

const std::vector<std::string>& ownVariables() {
    return names();
}

std::vector<char*> environmentForOthers() {
    std::vector<char*> others;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        const std::string_view name = text.substr(0, text.find('='));
        if (std::find(names().begin(), names().end(), name) == names().end()) others.push_back(*variable);
    }
    others.push_back(nullptr);
    return others;
}

}  // namespace sunpane
