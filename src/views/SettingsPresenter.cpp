#include "views/SettingsPresenter.h"

#include <QVariantMap>
#include <utility>

namespace sunpane {

SettingsPresenter::SettingsPresenter(SettingsModel& model, CalendarStore& calendars, ThemeStore& theme,
                                     RunLoop& runLoop, Actions actions)
    : model_(model),
      theme_(theme, runLoop),
      actions_(std::move(actions)),
      self_(std::make_shared<SettingsPresenter*>(this)) {
    changes_ = model_.onWillChange([this, &runLoop] {
        runLoop.post([weak = std::weak_ptr(self_)] {
            const auto self = weak.lock();
            if (self) emit(*self)->changed();
        });
    });
    calendarChanges_ = calendars.observeChanges([this] { emit calendarsChanged(); });
}

QVariantList SettingsPresenter::calendars() const {
    QVariantList list;
    for (const auto& calendar : model_.calendars()) {
        list.append(QVariantMap{{QStringLiteral("identifier"), QString::fromStdString(calendar.identifier)},
                                {QStringLiteral("title"), QString::fromStdString(calendar.title)}});
    }
    return list;
}

QStringList SettingsPresenter::todoCalendars() const {
    QStringList list;
    for (const auto& calendar : model_.calendars()) {
        if (model_.isTodoCalendar(calendar.identifier)) list.append(QString::fromStdString(calendar.identifier));
    }
    return list;
}

void SettingsPresenter::refresh() {
    emit changed();
    emit calendarsChanged();
}

}  // namespace sunpane
