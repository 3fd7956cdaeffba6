#pragma once

#include <QEasingCurve>
#include <QObject>

#include "base/Spring.h"

namespace sunpane {

/// A spring as QML animations take it: an easing curve and a duration in milliseconds.
class SpringCurve {
    Q_GADGET
    Q_PROPERTY(QEasingCurve curve READ curve CONSTANT)
    Q_PROPERTY(int duration READ duration CONSTANT)

public:
    SpringCurve() = default;
    explicit SpringCurve(const Spring& spring);

    QEasingCurve curve() const { return curve_; }
    int duration() const { return duration_; }

private:
    QEasingCurve curve_;
    int duration_ = 0;
};

}  // namespace sunpane

Q_DECLARE_METATYPE(sunpane::SpringCurve)
