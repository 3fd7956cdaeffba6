#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "base/Subscription.h"

namespace sunpane {

/// The desktop's spaces (virtual desktops), and a private one above them all in which a window stays visible whatever
/// else is on screen. Every function fails quietly where the desktop has no such thing. Main thread only.
class WindowSpaces {
public:
    using SpaceID = std::uint64_t;

    // Types of spaces.
    static constexpr std::int32_t ordinary = 0;
    static constexpr std::int32_t fullScreen = 4;

    virtual ~WindowSpaces() = default;

    /// The space on screen; 0 when the desktop does not tell. Cheap: it is asked several times a second.
    virtual SpaceID activeSpace() const = 0;
    /// `ordinary`, or `fullScreen` while a full-screen window covers it; any other number for a passing state of the
    /// desktop. Nothing when the desktop does not tell.
    virtual std::optional<std::int32_t> type(SpaceID space) const = 0;
    /// Calls `handler` after another space came on screen. An empty subscription where the desktop does not tell.
    [[nodiscard]] virtual Subscription onActiveSpaceChanged(std::function<void()> handler) = 0;

    /// Makes a private space at `level`, where higher is nearer to the user. 0 when the desktop has none.
    virtual SpaceID createPrivate(std::int32_t level) = 0;
    virtual void show(SpaceID space) = 0;
    /// `windowNumber` is PanelWindow::number(). From then on the window is in no other space.
    virtual void moveWindow(std::uint64_t windowNumber, SpaceID space) = 0;
    /// Hides the space and gives it up. Its windows are ordinary ones again.
    virtual void destroy(SpaceID space) = 0;
};

}  // namespace sunpane
