#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/PanelWindow.h"
#include "platform/UserDefaults.h"
#include "platform/WindowSpaces.h"

namespace sunpane {

/// The private space above all others that keeps the panel visible while another program is full screen.
///
/// One instance, owned by the start-up code; it outlives the panel. Main thread only.
class PinnedSpace {
public:
    static constexpr const char* levelKey = "pinnedSpaceLevel";
    static constexpr std::int32_t defaultLevel = 500;

    /// Takes one line without its end.
    using Log = std::function<void(const std::string& line)>;

    /// `spaces` is null on a desktop without private spaces; then nothing is ever pinned.
    PinnedSpace(WindowSpaces* spaces, const UserDefaults& defaults, Log log);

    /// Moves the window into the private space, which is made at the first call. False when the desktop has none; the
    /// window then stays the ordinary topmost window that it was.
    bool pin(const PanelWindow& window);

    /// Gives the space up; the next `pin` makes another.
    void reset();

    /// Counts the spaces that were given up. What is bound to a space is made anew when this changes.
    int generation() const { return generation_; }

private:
    std::int32_t level() const;

    WindowSpaces* spaces_;
    const UserDefaults& defaults_;
    Log log_;
    WindowSpaces::SpaceID space_ = 0;  // 0: none
    int generation_ = 0;
};

}  // namespace sunpane
