#include "dawnly/PanelAssembly.h"

#include <QCoreApplication>
#include <cstdint>
#include <utility>

namespace sunpane {
namespace {

/// The panel as one build of it knows it: gone from the screen when it goes, while the window waits for the next.
class PanelOnScreen : public PanelWindow {
public:
    explicit PanelOnScreen(PanelWindow& window) : window_(window) {}
    ~PanelOnScreen() override { window_.orderOut(); }

    std::uint64_t number() const override { return window_.number(); }
    Rect frame() const override { return window_.frame(); }
    bool isVisible() const override { return window_.isVisible(); }
    bool isOnScreen() const override { return window_.isOnScreen(); }
    void orderFrontRegardless() override { window_.orderFrontRegardless(); }
    void orderOut() override { window_.orderOut(); }
    void prepare() override { window_.prepare(); }
    void makeKey() override { window_.makeKey(); }
    void resignKey() override { window_.resignKey(); }

private:
    PanelWindow& window_;
};

}  // namespace

PanelAssembly::PanelAssembly(PanelPresenter::Collaborators collaborators, PanelBackground::Collaborators background,
                             X11Events& events)
    : collaborators_(collaborators), background_(std::move(background)), events_(events) {
    RootWindow::registerTypes();
    engine_.addImportPath(QStringLiteral("qrc:/"));
    QObject::connect(&engine_, &QQmlEngine::quit, qApp, &QCoreApplication::quit);
}

std::unique_ptr<PanelWindow> PanelAssembly::make(const Rect& frame, const Size& notchSize, double cardWidth,
                                                 double maxCardHeight) {
    const PanelPresenter::Measures measures{notchSize, cardWidth, maxCardHeight};
    if (window_) {
        root_->presenter().setMeasures(measures);
        if (window_->setFrame(frame)) root_->background().windowMoved();
    } else {
        auto root = std::make_unique<RootWindow>(engine_, std::make_unique<PanelPresenter>(collaborators_, measures),
                                                 background_);
        root_ = root.get();
        window_ = std::make_unique<X11PanelWindow>(std::move(root), frame, events_,
                                                   [this] { return root_->presenter().expanded(); });
        QObject::connect(root_, &RootWindow::outlineChanged, window_.get(), &X11PanelWindow::setOutline);
        QObject::connect(window_.get(), &X11PanelWindow::unfoldingExpected, root_, &RootWindow::makeContent);
        QObject::connect(root_, &RootWindow::contentGivenUp, &engine_, &ViewEngine::tidyUp);
    }
    return std::make_unique<PanelOnScreen>(*window_);
}

}  // namespace sunpane
