#pragma once

#include <QObject>
#include <QScreen>

#include "base/HandlerList.h"
#include "platform/Screens.h"
#include "platform/UserDefaults.h"

namespace sunpane {

/// The screens that XRandR reports, through Qt. No system tells where a camera housing is, so a laptop that has one
/// names it in the settings (`housingKey`): on the primary screen, or on the output that they name ("eDP-1").
class QtScreens : public QObject, public Screens {
    Q_OBJECT

public:
    explicit QtScreens(const UserDefaults& defaults);

    std::vector<Screen> all() const override;
    std::optional<Screen> main() const override;
    Subscription onChange(std::function<void()> handler) override;

private:
    void watch(QScreen* screen);
    Screen describe(const QScreen& screen) const;

    const UserDefaults& defaults_;
    HandlerList<> observers_;
};

}  // namespace sunpane
