#include "views/OnboardingWindowController.h"

#include <QPainterPath>
#include <QRegion>
#include <utility>

namespace sunpane {

OnboardingWindowController::OnboardingWindowController(ViewEngine& engine, Tour& tour, RunLoop& runLoop,
                                                       std::function<bool()> hasCompositor)
    : tour_(tour),
      hasCompositor_(std::move(hasCompositor)),
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
    fitShape();
}

void OnboardingWindowController::fitShape() {
    QQuickWindow* window = window_.window();
    if (window == nullptr) return;
    if (hasCompositor_()) return window->setMask({});
    // The shadow around the body would be black.
    const double margin = window->property("shadow").toDouble();
    const double radius = window->property("radius").toDouble();
    QPainterPath body;
    body.addRoundedRect(QRectF({}, window->size()).adjusted(margin, margin, -margin, -margin), radius, radius);
    window->setMask(QRegion(body.toFillPolygon().toPolygon()));
}

}  // namespace sunpane
