#pragma once

#include <memory>

#include "dawnly/HeapMemory.h"
#include "linux/desktop/X11Events.h"
#include "linux/desktop/X11PanelWindow.h"
#include "platform/PanelWindow.h"
#include "views/PanelBackground.h"
#include "views/PanelPresenter.h"
#include "views/RootWindow.h"
#include "views/ViewEngine.h"

namespace sunpane {

/// Puts the root view into a window of the desktop. Main thread only.
///
/// There is one window, made at the first call of `make` and placed anew at each later one: a panel that is built again
/// keeps what the user typed, its open menus and where its lists were scrolled to, and costs next to nothing. At most
/// one panel exists at a time.
class PanelAssembly : public PanelWindows {
public:
    PanelAssembly(PanelPresenter::Collaborators collaborators, PanelBackground::Collaborators background,
                  X11Events& events);

    std::unique_ptr<PanelWindow> make(const Rect& frame, const Size& notchSize, double cardWidth,
                                      double maxCardHeight) override;

    /// For the program's other windows, which share what the panel has loaded.
    ViewEngine& engine() { return engine_; }

private:
    PanelPresenter::Collaborators collaborators_;
    PanelBackground::Collaborators background_;
    X11Events& events_;
    ViewEngine engine_{returnFreeMemory};
    // Both are null until the first panel is made. The presenter and the content are the window's.
    std::unique_ptr<X11PanelWindow> window_;
    RootWindow* root_ = nullptr;
};

}  // namespace sunpane
