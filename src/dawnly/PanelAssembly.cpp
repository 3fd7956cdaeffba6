#include "dawnly/PanelAssembly.h"

#include "linux/desktop/X11PanelWindow.h"
#include "views/RootWindow.h"

namespace sunpane {

PanelAssembly::PanelAssembly(PanelPresenter::Collaborators collaborators, X11Events& events)
    : collaborators_(collaborators), events_(events) {
    RootWindow::registerTypes();
    engine_.addImportPath(QStringLiteral("qrc:/"));
}

std::unique_ptr<PanelWindow> PanelAssembly::make(const Rect& frame, const Size& notchSize, double cardWidth,
                                                 double maxCardHeight) {
    const PanelPresenter::Measures measures{notchSize, cardWidth, maxCardHeight};
    auto root = std::make_unique<RootWindow>(engine_, std::make_unique<PanelPresenter>(collaborators_, measures));
    RootWindow& source = *root;
    auto panel = std::make_unique<X11PanelWindow>(std::move(root), frame, events_);
    QObject::connect(&source, &RootWindow::outlineChanged, panel.get(), &X11PanelWindow::setOutline);
    return panel;
}

}  // namespace sunpane
