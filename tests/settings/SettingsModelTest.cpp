#include "settings/SettingsModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/NotificationNames.h"
#include "core/briefing/FolderBriefingProvider.h"
#include "support/SimulatedApplication.h"
#include "support/SimulatedCalendar.h"
#include "support/SimulatedDesktop.h"
#include "support/SimulatedUserDefaults.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Strings = std::vector<std::string>;

class Settings : public ::testing::Test {
protected:
    Strings todoCalendars() const { return defaults.read<Strings>("todoCalendarIDs").valueOr({"unset"}); }

    testing::SimulatedUserDefaults defaults;
    LocalNotifications notifications;
    testing::SimulatedBundle bundle;
    testing::SimulatedLoginService service;
    LoginItem loginItem{bundle, service, defaults};
    testing::SimulatedCalendar calendars;
    testing::SimulatedWorkspace workspace;
    testing::SimulatedFolderPicker picker;
    testing::SimulatedPasteboard pasteboard;
    Strings registrations;
    Strings readings;
    SettingsModel settings{{defaults, notifications, loginItem, calendars, workspace, picker, pasteboard,
                            [this] {
                                const bool on = defaults.read<bool>("quickCaptureEnabled").valueOr(true);
                                registrations.emplace_back(on ? "on" : "off");
                            },
                            [this] {
                                const bool on = defaults.read<bool>("calendarTodosEnabled").valueOr(true);
                                readings.emplace_back((on ? "on " : "off ") + std::to_string(todoCalendars().size()));
                            },
                            FolderBriefingProvider::currentDirectory(defaults)}};
};

TEST_F(Settings, RegisterTheHotkeyAnewOnceTheNewChoiceIsKept) {
    EXPECT_TRUE(settings.quickCapture());
    settings.setQuickCapture(false);
    settings.setQuickCapture(true);
    EXPECT_THAT(registrations, ElementsAre("off", "on"));
}

TEST_F(Settings, ReadTheCalendarsAnewOnceTheNewChoiceIsKept) {
    settings.setTodoCalendar("a", true);
    settings.setTodoCalendar("b", true);
    settings.setTodoCalendar("a", false);
    settings.setCalendarTodos(false);
    EXPECT_THAT(readings, ElementsAre("on 1", "on 2", "on 1", "off 1"));
}

TEST_F(Settings, TakeUpWhatAnotherProgramChangedAndNothingElse) {
    int folders = 0;
    const auto watch = notifications.observe(notification::briefingsFolderChanged, [&](const auto&) { ++folders; });
    settings.changedOutside();
    EXPECT_THAT(registrations, IsEmpty());
    EXPECT_EQ(folders, 0);
    defaults.set("quickCaptureEnabled", false);
    defaults.set("briefingsFolderPath", std::string("/elsewhere"));
    settings.changedOutside();
    settings.changedOutside();
    EXPECT_THAT(registrations, ElementsAre("off"));
    EXPECT_EQ(folders, 1);
    settings.setFolder("/third");
    settings.setQuickCapture(true);
    settings.changedOutside();
    EXPECT_EQ(folders, 2) << "our own changes are told once";
    EXPECT_EQ(registrations.size(), 2U);
}

TEST_F(Settings, ReadTheCalendarsAnewWhenAnotherProgramChoseWhatBecomesATodo) {
    defaults.set("calendarTodosEnabled", false);
    settings.changedOutside();
    EXPECT_THAT(readings, ElementsAre("off 1"));
    defaults.set("calendarTodosEnabled", true);
    defaults.set("todoCalendarIDs", Strings{"a", "b"});
    settings.changedOutside();
    settings.changedOutside();
    EXPECT_THAT(readings, ElementsAre("off 1", "on 2")) << "once for both";
    settings.setCalendarTodos(false);
    settings.setTodoCalendar("a", false);
    readings.clear();
    settings.changedOutside();
    EXPECT_THAT(readings, IsEmpty()) << "our own changes are told once";
}

TEST_F(Settings, ShowALoginItemThatWasRegisteredAfterTheyWereMade) {
    loginItem.registerOnFirstRun();
    EXPECT_TRUE(settings.launchAtLogin());
}

TEST_F(Settings, KeepTheSwitchWhereTheUserPutItWhenTheDesktopRefuses) {
    service.error = "No room.";
    settings.setLaunchAtLogin(true);
    EXPECT_TRUE(settings.launchAtLogin());
    EXPECT_EQ(settings.loginItemError(), "No room.");
    service.error.reset();
    settings.setLaunchAtLogin(true);
    EXPECT_TRUE(service.enabled);
    EXPECT_FALSE(settings.loginItemError());
    // From then on it follows the desktop again.
    service.enabled = false;
    EXPECT_FALSE(settings.launchAtLogin());
}

TEST_F(Settings, KeepAnEmptyListWhenTheLastCalendarIsUnchecked) {
    settings.setTodoCalendar("b", true);
    settings.setTodoCalendar("a", true);
    settings.setTodoCalendar("b", true);
    EXPECT_THAT(todoCalendars(), ::testing::UnorderedElementsAre("a", "b"));
    EXPECT_TRUE(settings.isTodoCalendar("a"));
    settings.setTodoCalendar("a", false);
    settings.setTodoCalendar("b", false);
    EXPECT_THAT(todoCalendars(), IsEmpty());
}

TEST_F(Settings, ListCalendarsByTitleWhateverTheCase) {
    calendars.known = {{"3", "work"}, {"1", "Zoo"}, {"2", "Home"}, {"0", "work"}};
    Strings identifiers;
    for (const auto& each : settings.calendars())
        identifiers.push_back(each.identifier);
    EXPECT_THAT(identifiers, ElementsAre("2", "0", "3", "1"));
}

TEST_F(Settings, MoveToAnotherFolderAndBack) {
    Strings folders;
    const auto heard = notifications.observe(notification::briefingsFolderChanged,
                                             [&](const auto&) { folders.push_back(settings.watchedFolder()); });
    const std::string original = settings.watchedFolder();
    EXPECT_TRUE(settings.usesDefaultFolder());
    settings.pickFolder();
    EXPECT_EQ(picker.startedIn, original);
    EXPECT_EQ(picker.button, "Watch This Folder");
    picker.answer(std::nullopt);
    EXPECT_THAT(folders, IsEmpty());

    settings.pickFolder();
    picker.answer("/home/ada/Notes");
    EXPECT_FALSE(settings.usesDefaultFolder());
    EXPECT_EQ(settings.otherStoresFolder(), original);
    // Whatever is copied from now on names the new folder.
    settings.copy(SettingsModel::Task::morning);
    EXPECT_THAT(pasteboard.content, HasSubstr("\n/home/ada/Notes/\n"));
    settings.openFolder();
    EXPECT_THAT(workspace.revealed, ElementsAre("/home/ada/Notes"));

    settings.setFolder(std::nullopt);
    EXPECT_THAT(folders, ElementsAre("/home/ada/Notes", original));
    EXPECT_FALSE(defaults.value(FolderBriefingProvider::folderDefaultsKey));
    EXPECT_FALSE(settings.otherStoresFolder());
}

}  // namespace
}  // namespace sunpane
