#include "onboarding/Tour.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/NotificationNames.h"
#include "core/briefing/FolderBriefingProvider.h"
#include "onboarding/WelcomeBrief.h"
#include "support/SimulatedApplication.h"
#include "support/SimulatedCalendar.h"
#include "support/SimulatedDesktop.h"
#include "support/SimulatedPlatform.h"
#include "support/SimulatedUserDefaults.h"

namespace sunpane {
namespace {

using ::testing::StartsWith;

class TourTest : public ::testing::Test {
protected:
    TourTest() { defaults.set(FolderBriefingProvider::folderDefaultsKey, std::string("/b/Dawnly")); }

    testing::SimulatedPlatform platform;
    testing::SimulatedUserDefaults defaults;
    testing::SimulatedCalendar calendars;
    CalendarFallback calendar{calendars, defaults, platform.clock};
    testing::SimulatedWorkspace workspace;
    testing::SimulatedPasteboard pasteboard;
    LocalNotifications notifications;
    Tour tour{{defaults, notifications, platform.runLoop, calendars, calendar, workspace, pasteboard,
               [this](const std::function<void()>& done) {
                   calendars.status = CalendarAccess::full;
                   done();
               }}};
};

TEST_F(TourTest, CopiesTheTaskThatIsChosenAroundTheFolderOfNow) {
    tour.connectAI();
    struct Case {
        Tour::Path path;
        int tab;
        const char* beginning;
    };
    for (const auto& [path, tab, beginning] :
         std::initializer_list<Case>{{Tour::Path::needBrief, 0, "You write the user's MORNING BRIEF."},
                                     {Tour::Path::needBrief, 1, "You write the user's END-OF-DAY recap."},
                                     {Tour::Path::haveBrief, 0, "=== DELIVER TO DAWNLY ==="},
                                     {Tour::Path::haveBrief, 1, "=== DELIVER TO DAWNLY ==="}}) {
        tour.choosePath(path);
        tour.chooseBriefTab(tab);
        tour.copy();
        EXPECT_THAT(pasteboard.content, StartsWith(beginning));
        EXPECT_THAT(pasteboard.content, ::testing::HasSubstr("\n/b/Dawnly/\n"));
    }
    defaults.set(FolderBriefingProvider::folderDefaultsKey, std::string("/elsewhere"));
    tour.copy();
    EXPECT_THAT(pasteboard.content, ::testing::HasSubstr("\n/elsewhere/\n"));
    // The text on screen follows.
    bool isTold = false;
    const auto changes = tour.onWillChange([&] { isTold = true; });
    notifications.post(notification::briefingsFolderChanged);
    EXPECT_TRUE(isTold);
}

TEST_F(TourTest, ConfirmsACopyForTwoSecondsAfterTheLast) {
    tour.copy();
    platform.time.advance(1.5);
    tour.copy();
    platform.time.advance(1.9);
    EXPECT_TRUE(tour.copied());
    platform.time.advance(0.2);
    EXPECT_FALSE(tour.copied());
}

TEST_F(TourTest, RemembersThatTheAssistantWasSkippedUntilItBeginsAgain) {
    tour.skipAI();
    EXPECT_EQ(tour.step(), Tour::Step::done);
    EXPECT_TRUE(tour.skippedAI());
    tour.begin();
    tour.connectAI();
    tour.finish();
    EXPECT_FALSE(tour.skippedAI());
}

TEST_F(TourTest, IsCompletedByItsLastButtonOnly) {
    tour.connectAI();
    tour.finish();
    EXPECT_FALSE(defaults.value(onboarding::didCompleteOnboardingKey));
    tour.complete();
    EXPECT_TRUE(defaults.read<bool>(onboarding::didCompleteOnboardingKey).valueOr(false));
}

TEST_F(TourTest, ReadsTheCalendarsStateAtTheLastStepAfterEachAnswerAndWhenTheUserComesBack) {
    calendars.status = CalendarAccess::notDetermined;
    tour.finish();
    EXPECT_EQ(tour.calendarStatus(), CalendarAccess::notDetermined);
    tour.connectCalendar();
    calendars.answer(false);
    EXPECT_EQ(tour.calendarStatus(), CalendarAccess::denied);
    tour.openCalendarSettings();
    EXPECT_EQ(tour.calendarStatus(), CalendarAccess::full);
    calendars.status = CalendarAccess::denied;
    tour.comeBack();
    EXPECT_EQ(tour.calendarStatus(), CalendarAccess::denied);
}

}  // namespace
}  // namespace sunpane
