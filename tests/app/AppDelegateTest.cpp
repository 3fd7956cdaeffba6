#include "app/AppDelegate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/NotificationNames.h"
#include "core/briefing/FolderBriefingProvider.h"
#include "onboarding/WelcomeBrief.h"
#include "support/SimulatedApplication.h"
#include "support/SimulatedCalendar.h"
#include "support/SimulatedDesktop.h"
#include "support/SimulatedFileSystem.h"
#include "support/SimulatedPlatform.h"
#include "support/SimulatedUserDefaults.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;

TEST(ReasonToMove, IsGivenForBundlesInTheWrongPlaceOnly) {
    const std::vector<std::string> folders{"/usr/", "/home/ada/.local/"};
    struct Case {
        const char* path;
        const char* beginning;  // of the reason; null for none
    };
    for (const auto& [path, beginning] : std::initializer_list<Case>{
             {"/usr/lib/Dawnly.app", nullptr},
             {"/home/ada/.local/lib/Dawnly.app", nullptr},
             {"/home/ada/Downloads/Dawnly.app", "Dawnly runs outside the Applications folder."},
             {"/usrlocal/Dawnly.app", "Dawnly runs outside the Applications folder."},
             {"/home/ada/src/build/bin/dawnly", nullptr},
             {"/private/AppTranslocation/1/d/Dawnly.app", "Dawnly is running straight from the downloaded disk image."},
             {"/usr/AppTranslocation/Dawnly.app", "Dawnly is running straight from the downloaded disk image."}}) {
        const auto reason = reasonToMove(path, folders);
        EXPECT_EQ(reason.has_value(), beginning != nullptr) << path;
        EXPECT_THAT(reason.value_or(""), ::testing::StartsWith(beginning ? beginning : "")) << path;
    }
}

class Launch : public ::testing::Test {
protected:
    Launch() {
        defaults.set(FolderBriefingProvider::folderDefaultsKey, std::string("/b"));
        for (const char* name : {notification::revealTodo, notification::collapseNotch})
            heard.push_back(notifications.observe(name, [this, name](const auto&) { steps.emplace_back(name); }));
    }

    void launch() { delegate.applicationDidFinishLaunching(); }
    void say(const char* step) { steps.emplace_back(step); }

    testing::SimulatedPlatform platform;
    testing::SimulatedUserDefaults defaults;
    testing::SimulatedFileSystem files{platform.clock};
    LocalNotifications notifications;
    testing::SimulatedBroadcasts distributed;
    testing::SimulatedWorkspace workspace;
    testing::SimulatedSpaces spaces;
    testing::SimulatedBundle bundle;
    testing::SimulatedLoginService service;
    LoginItem loginItem{bundle, service, defaults};
    testing::SimulatedAlerts alerts;
    testing::SimulatedCalendar calendars;
    CalendarFallback calendar{calendars, defaults, platform.clock};
    std::vector<std::string> steps;
    std::vector<Subscription> heard;
    AppDelegate delegate{{platform.clock, platform.runLoop, defaults, notifications, distributed, files, workspace,
                          &spaces, bundle, loginItem, alerts, calendars, calendar},
                         {[this] { say("hotkeys"); },
                          [this] {
                              // By now the first briefing is there to be shown.
                              say(files.content("/b/2026-11-22.md") ? "panel with welcome" : "panel");
                          },
                          [this] { say("tour"); }, [this] { say("privacy"); }}};
};

TEST_F(Launch, DoesTheFirstRunsWorkOnceAndOpensTheTourUntilItIsCompleted) {
    launch();
    EXPECT_THAT(steps, ElementsAre("hotkeys", "panel with welcome", "tour"));
    EXPECT_TRUE(service.enabled);

    // The user takes the login item out; the next start leaves it at that, and only the tour is back.
    service.enabled = false;
    launch();
    EXPECT_FALSE(service.enabled);
    EXPECT_EQ(steps.back(), "tour");
    defaults.set(onboarding::didCompleteOnboardingKey, true);
    steps.clear();
    launch();
    EXPECT_THAT(steps, ElementsAre("hotkeys", "panel with welcome"));
}

TEST_F(Launch, LeadsTheLoginItemOfACopyElsewhereHereUnlessTheUserTookItOut) {
    launch();
    service.isForAnotherCopy = true;
    launch();
    EXPECT_FALSE(service.isForAnotherCopy);
    EXPECT_TRUE(service.enabled);

    service.enabled = false;
    service.isForAnotherCopy = true;
    launch();
    EXPECT_FALSE(service.enabled);
    service.enabled = true;
    for (const char* elsewhere : {"/home/ada/src/build/bin/dawnly", "/home/ada/Downloads/Dawnly.app"}) {
        bundle.where = elsewhere;
        launch();
        EXPECT_TRUE(service.isForAnotherCopy) << elsewhere;
    }
}

TEST_F(Launch, OfAProgramThatWasOnlyBuiltRegistersNothingAndOffersNoMove) {
    bundle.where = "/home/ada/src/build/bin/dawnly";
    launch();
    EXPECT_EQ(service.changes, 0);
    EXPECT_FALSE(defaults.value(LoginItem::didAttemptKey));
    EXPECT_EQ(alerts.message(), "");
    EXPECT_EQ(steps.back(), "tour");
}

TEST_F(Launch, WaitsForTheAnswerToTheMoveBeforeAnythingElseAsks) {
    bundle.where = "/home/ada/Downloads/Dawnly.app";
    calendars.status = CalendarAccess::notDetermined;
    launch();
    EXPECT_EQ(alerts.message(), "Move Dawnly to Applications?");
    EXPECT_EQ(calendars.questions, 0);
    EXPECT_EQ(steps.back(), "panel with welcome");
    // The panel is on screen, so it folds for another space already.
    spaces.switchTo(2);
    EXPECT_EQ(steps.back(), notification::collapseNotch);
    alerts.answer(false);
    EXPECT_EQ(calendars.questions, 1);
    EXPECT_EQ(steps.back(), "tour");
    EXPECT_EQ(bundle.opened, 0);
}

TEST_F(Launch, MovesOpensTheCopyAndEnds) {
    bundle.where = "/home/ada/Downloads/Dawnly.app";
    launch();
    alerts.answer(true);
    EXPECT_EQ(bundle.opened, 1);
    platform.time.advance(0.7);
    EXPECT_FALSE(workspace.terminated);
    platform.time.advance(0.2);
    EXPECT_TRUE(workspace.terminated);
    // What is still to be asked, the copy asks.
    EXPECT_EQ(steps.back(), "panel with welcome");
}

TEST_F(Launch, GoesOnWhereItIsWhenItCannotBeMoved) {
    bundle.where = "/home/ada/Downloads/Dawnly.app";
    bundle.canInstall = false;
    launch();
    alerts.answer(true);
    EXPECT_EQ(alerts.message(), "Couldn't move automatically");
    // Nothing lies over it until it was read.
    EXPECT_EQ(steps.back(), "panel with welcome");
    alerts.answer(true);
    platform.time.advance(5);
    EXPECT_EQ(bundle.opened, 0);
    EXPECT_FALSE(workspace.terminated);
    EXPECT_EQ(steps.back(), "tour");
}

TEST_F(Launch, TellsOfACalendarQuestionThatGotLostAndOnlyThen) {
    calendars.status = CalendarAccess::notDetermined;
    launch();
    EXPECT_EQ(alerts.message(), "");
    calendars.swallowQuestion();
    EXPECT_EQ(alerts.message(), "Calendar access needs one manual step");
    alerts.answer(true);
    EXPECT_EQ(steps.back(), "privacy");

    launch();
    calendars.answer(false);
    EXPECT_EQ(alerts.message(), "");
}

TEST_F(Launch, FollowsBroadcastsAndSpaces) {
    launch();
    steps.clear();
    distributed.broadcast("app.dawnly.Dawnly.expand");
    spaces.switchTo(2);
    EXPECT_THAT(steps, ElementsAre(notification::revealTodo, notification::collapseNotch));
}

}  // namespace
}  // namespace sunpane
