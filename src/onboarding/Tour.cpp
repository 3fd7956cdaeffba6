#include "onboarding/Tour.h"

#include <utility>

#include "base/NotificationNames.h"
#include "core/briefing/FolderBriefingProvider.h"
#include "onboarding/Prompts.h"
#include "onboarding/WelcomeBrief.h"

namespace sunpane {

Tour::Tour(Collaborators collaborators)
    : with_(std::move(collaborators)),
      folderChanges_(with_.notifications.observe(notification::briefingsFolderChanged,
                                                 // The task names the folder.
                                                 [this](const auto&) { announceChange(); })),
      self_(std::make_shared<Tour*>(this)) {}

template <class T>
void Tour::change(T& field, T value) {
    if (field == value) return;
    announceChange();
    field = value;
}

void Tour::begin() {
    change(skippedAI_, false);
    goTo(Step::intro);
}

void Tour::connectAI() {
    goTo(Step::connect);
}

void Tour::skipAI() {
    change(skippedAI_, true);
    goTo(Step::done);
}

void Tour::finish() {
    goTo(Step::done);
}

void Tour::goTo(Step step) {
    change(step_, step);
    comeBack();
}

void Tour::comeBack() {
    if (step_ == Step::done) readCalendarStatus();
}

void Tour::choosePath(Path path) {
    change(path_, path);
}

void Tour::chooseBriefTab(int tab) {
    change(briefTab_, tab);
}

std::string Tour::currentPrompt() const {
    const std::string folder = FolderBriefingProvider::currentDirectory(with_.defaults);
    if (path_ == Path::haveBrief) return prompts::deliveryBlock(folder);
    return briefTab_ == 0 ? prompts::morningTask(folder) : prompts::eveningTask(folder);
}

void Tour::copy() {
    with_.pasteboard.setText(currentPrompt());
    change(copied_, true);
    copiedTimer_ = with_.runLoop.after(copiedTime, [this] { change(copied_, false); });
}

void Tour::readCalendarStatus() {
    change(calendarStatus_, with_.calendars.access());
}

void Tour::connectCalendar() {
    // Brings the question of the start to the front, which may be open behind other windows.
    with_.calendars.requestFullAccess([](bool) {});
    with_.calendar.ensureAccess([weak = std::weak_ptr(self_)](bool) {
        if (const auto self = weak.lock()) (*self)->readCalendarStatus();
    });
}

void Tour::openCalendarSettings() {
    with_.openCalendarPrivacy([weak = std::weak_ptr(self_)] {
        if (const auto self = weak.lock()) (*self)->readCalendarStatus();
    });
}

void Tour::complete() {
    with_.defaults.set(onboarding::didCompleteOnboardingKey, true);
}

}  // namespace sunpane
