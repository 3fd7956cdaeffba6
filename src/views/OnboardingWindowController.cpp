#include "views/OnboardingWindowController.h"

namespace sunpane {

OnboardingWindowController::OnboardingWindowController(ViewEngine& engine, Tour& tour, RunLoop& runLoop)
    : tour_(tour),
      window_(engine, QStringLiteral("OnboardingWindow.qml")),
      self_(std::make_shared<OnboardingWindowController*>(this)) {
    changes_ = tour_.onWillChange([this, &runLoop] {
        runLoop.post([weak = std::weak_ptr(self_)] {
            const auto self = weak.lock();
            if (self) emit(*self)->changed();
        });
    });
}

void OnboardingWindowController::show() {
    if (!window_.isVisible()) tour_.begin();
    window_.show({{QStringLiteral("tour"), QVariant::fromValue<QObject*>(this)}});
}

}  // namespace sunpane
