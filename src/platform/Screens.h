#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "base/Geometry.h"
#include "base/Subscription.h"

namespace sunpane {

/// The settings that tell of a camera housing: how far it reaches down and its width (points), and its output's name.
namespace housingKey {
inline constexpr const char* height = "notchHeight";
inline constexpr const char* width = "notchWidth";
inline constexpr const char* screen = "notchScreen";
}  // namespace housingKey

/// One screen of the desktop, in points.
struct Screen {
    Rect frame;
    /// How far the camera housing reaches down from the top edge; 0 on a screen without one.
    double safeAreaTop = 0;
    /// The usable areas left and right of the camera housing, where the system knows them.
    std::optional<Rect> auxiliaryTopLeft;
    std::optional<Rect> auxiliaryTopRight;

    friend bool operator==(const Screen&, const Screen&) = default;
};

/// The screens that are connected now. Main thread only.
class Screens {
public:
    virtual ~Screens() = default;

    /// In the system's order; empty for a while when the last one is unplugged.
    virtual std::vector<Screen> all() const = 0;
    /// The primary screen.
    virtual std::optional<Screen> main() const = 0;
    /// Calls `handler` on the main thread after screens came, went, moved or changed their size.
    [[nodiscard]] virtual Subscription onChange(std::function<void()> handler) = 0;

    /// The first screen with a camera housing.
    std::optional<Screen> notched() const {
        for (auto& screen : all()) {
            if (screen.safeAreaTop > 0) return screen;
        }
        return std::nullopt;
    }
};

}  // namespace sunpane
