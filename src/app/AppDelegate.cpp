#include "app/AppDelegate.h"

#include <algorithm>
#include <utility>

#include "base/AppIdentity.h"
#include "base/NotificationNames.h"
#include "onboarding/WelcomeBrief.h"

namespace sunpane {

std::optional<std::string> reasonToMove(std::string_view bundlePath,
                                        const std::vector<std::string>& applicationFolders) {
    if (!bundlePath.ends_with(".app")) return std::nullopt;
    if (bundlePath.find("/AppTranslocation/") != std::string_view::npos) {
        return "Dawnly is running straight from the downloaded disk image. macOS blocks permission prompts (like "
               "Calendar access) for apps run this way.";
    }
    const bool inPlace = std::any_of(applicationFolders.begin(), applicationFolders.end(),
                                     [&](const std::string& folder) { return bundlePath.starts_with(folder); });
    if (inPlace) return std::nullopt;
    return "Dawnly runs outside the Applications folder. Permissions like Calendar access only stick when it lives in "
           "Applications.";
}

AppDelegate::AppDelegate(const Collaborators& collaborators, Steps steps)
    : with_(collaborators), steps_(std::move(steps)), self_(std::make_shared<AppDelegate*>(this)) {}

void AppDelegate::applicationDidFinishLaunching() {
    steps_.startHotkeys();
    expandRequests_ = with_.distributed.observe(std::string(appIdentifier) + ".expand",
                                                [this] { with_.notifications.post(notification::revealTodo); });
    with_.loginItem.registerOnFirstRun();
    // A copy that is to be moved, or whose move was declined, is not the one to start with the session.
    if (!reasonToMove(with_.bundle.path(), with_.bundle.applicationFolders())) with_.loginItem.followMove();
    onboarding::writeWelcomeBriefIfNeeded(with_.defaults, with_.files, with_.clock);
    steps_.showPanel();
    if (with_.spaces != nullptr)
        spaceChanges_ =
            with_.spaces->onActiveSpaceChanged([this] { with_.notifications.post(notification::collapseNotch); });
    offerMoveToApplications([this] { finishLaunching(); });
}

void AppDelegate::offerMoveToApplications(std::function<void()> otherwise) {
    const auto reason = reasonToMove(with_.bundle.path(), with_.bundle.applicationFolders());
    if (!reason) return otherwise();
    with_.alerts.show({"Move Dawnly to Applications?", *reason, "Move and Relaunch", "Not Now"},
                      [weak = std::weak_ptr(self_), otherwise = std::move(otherwise)](bool move) {
                          const auto self = weak.lock();
                          if (!self) return;
                          if (!move) return otherwise();
                          (*self)->moveToApplications(otherwise);
                      });
}

void AppDelegate::moveToApplications(const std::function<void()>& otherwise) {
    if (!with_.bundle.install()) {
        with_.alerts.show({"Couldn't move automatically",
                           "Drag Dawnly to the Applications folder in Finder, then open it from there.", "OK", ""},
                          [otherwise](bool) { otherwise(); });
        return;
    }
    with_.bundle.openInstalled();
    relaunch_ = with_.runLoop.after(relaunchDelay, [this] { with_.workspace.terminate(); });
}

void AppDelegate::finishLaunching() {
    // First, because the question for the calendars opens beside what is there, and the last window gets the keyboard.
    if (!with_.defaults.read<bool>(onboarding::didCompleteOnboardingKey).valueOr(false)) steps_.showTour();
    with_.calendar.ensureAccess([weak = std::weak_ptr(self_)](bool) {
        const auto self = weak.lock();
        if (!self) return;
        AppDelegate& delegate = **self;
        if (delegate.with_.calendars.access() == CalendarAccess::notDetermined)
            delegate.showCalendarRequestSwallowedAlert();
    });
}

void AppDelegate::showCalendarRequestSwallowedAlert() {
    with_.alerts.show(
        {"Calendar access needs one manual step",
         "macOS didn't register Dawnly's calendar request. If Dawnly is listed under System Settings → Privacy & "
         "Security → Calendars, toggle it on. If it isn't listed, restart your Mac and open Dawnly again — macOS's "
         "permission service sometimes needs the nudge.",
         "Open Privacy Settings", "Later"},
        [weak = std::weak_ptr(self_)](bool open) {
            const auto self = weak.lock();
            if (self && open) (*self)->steps_.openCalendarPrivacy();
        });
}

}  // namespace sunpane
