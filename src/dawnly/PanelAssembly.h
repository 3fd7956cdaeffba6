#pragma once

#include <QQmlEngine>

#include "linux/desktop/X11Events.h"
#include "platform/PanelWindow.h"
#include "views/PanelPresenter.h"

namespace sunpane {

/// Puts the root view into a window of the desktop. Main thread only.
class PanelAssembly : public PanelWindows {
public:
    PanelAssembly(PanelPresenter::Collaborators collaborators, X11Events& events);

    std::unique_ptr<PanelWindow> make(const Rect& frame, const Size& notchSize, double cardWidth,
                                      double maxCardHeight) override;

private:
    PanelPresenter::Collaborators collaborators_;
    X11Events& events_;
    QQmlEngine engine_;
};

}  // namespace sunpane
