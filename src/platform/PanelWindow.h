#pragma once

#include <cstdint>
#include <memory>

#include "base/Geometry.h"

namespace sunpane {

/// A borderless, immovable window above all others, on every desktop, that shows the panel's content on a clear
/// background and never takes the keyboard by appearing. Only the visible outline of its content takes clicks; beside
/// it they reach what lies below. Destroying it closes it. Main thread only.
class PanelWindow {
public:
    virtual ~PanelWindow() = default;

    /// The desktop's own number of the window.
    virtual std::uint64_t number() const = 0;
    /// In screen points.
    virtual Rect frame() const = 0;
    virtual bool isVisible() const = 0;
    virtual bool isOnScreen() const = 0;

    /// Shows the window above all others without activating the program.
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;

    /// The panel may unfold any moment: what it shows then is made now.
    virtual void prepare() = 0;

    /// Takes the keyboard.
    virtual void makeKey() = 0;
    /// Hands the keyboard back to the window that had it before, if the panel has it now.
    virtual void resignKey() = 0;
};

/// Makes panel windows with the program's root view in them.
class PanelWindows {
public:
    virtual ~PanelWindows() = default;

    /// A window that is not shown yet. `notchSize` is that of the notch at the middle of the frame's top edge; the
    /// card that unfolds from it is `cardWidth` wide and at most `maxCardHeight` high.
    virtual std::unique_ptr<PanelWindow> make(const Rect& frame, const Size& notchSize, double cardWidth,
                                              double maxCardHeight) = 0;
};

}  // namespace sunpane
