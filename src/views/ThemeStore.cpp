#include "views/ThemeStore.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace sunpane {

std::string ThemeStore::themeName() const {
    constexpr std::array<std::string_view, 6> names{"glass", "haze", "sun", "dusk", "custom", "dark"};
    const auto stored = defaults_.read<std::string>("notchTheme").value;
    if (stored && std::find(names.begin(), names.end(), *stored) != names.end()) return *stored;
    return defaults_.read<double>("glassTint").valueOr(0) > 0.6 ? "dark" : "glass";
}

}  // namespace sunpane
