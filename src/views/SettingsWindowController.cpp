#include "views/SettingsWindowController.h"

#include <utility>

#include "base/NotificationNames.h"

namespace sunpane {

SettingsWindowController::SettingsWindowController(const Collaborators& collaborators,
                                                   SettingsPresenter::Actions actions)
    : with_(collaborators),
      actions_(std::move(actions)),
      window_(with_.engine, QStringLiteral("SettingsWindow.qml"), {QStringLiteral("tab")}),
      requests_(with_.notifications.observe(notification::showSettings, [this](const auto&) { show(); })) {}

void SettingsWindowController::show() {
    with_.notifications.post(notification::collapseNotch);
    if (presenter_) {
        presenter_->refresh();
    } else {
        presenter_ = std::make_unique<SettingsPresenter>(with_.model, with_.calendars, with_.theme, with_.runLoop,
                                                         std::move(actions_));
    }
    window_.show({{QStringLiteral("presenter"), QVariant::fromValue<QObject*>(presenter_.get())}});
}

}  // namespace sunpane
