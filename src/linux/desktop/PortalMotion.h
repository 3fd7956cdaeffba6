#pragma once

#include <QMap>
#include <QObject>
#include <QVariant>
#include <functional>

#include "base/HandlerList.h"
#include "platform/MotionPreference.h"

namespace sunpane {

/// Settings of the desktop as its portal hands them out: by namespace, then by key.
using PortalSettings = QMap<QString, QVariantMap>;

/// Whether any of the desktop's own settings asks for less motion.
bool reducesMotion(const PortalSettings& settings);

/// The wish for less motion, from the settings portal on the session bus. Asks without waiting when it is made, and
/// again at every change; without a portal the answer stays no.
class PortalMotion : public QObject, public MotionPreference {
    Q_OBJECT

public:
    PortalMotion();

    bool isReduced() const override { return reduced_; }
    Subscription onChange(std::function<void()> handler) override { return handlers_.add(std::move(handler)); }

private slots:
    void ask();

private:
    void answer(const PortalSettings& settings);

    bool reduced_ = false;
    HandlerList<> handlers_;
};

}  // namespace sunpane
