#pragma once

#include <string>

#include "platform/UserDefaults.h"

namespace sunpane {

/// The panel's theme as the user's settings have it. Main thread only.
class ThemeStore {
public:
    explicit ThemeStore(const UserDefaults& defaults) : defaults_(defaults) {}

    /// One of "glass", "haze", "sun", "dusk", "custom", "dark", from `notchTheme`. Settings without a known theme are
    /// older ones: their `glassTint` above 0.6 means "dark", anything else "glass".
    std::string themeName() const;

private:
    const UserDefaults& defaults_;
};

}  // namespace sunpane
