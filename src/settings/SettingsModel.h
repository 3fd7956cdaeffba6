#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/LoginItem.h"
#include "base/LocalNotifications.h"
#include "base/Observable.h"
#include "platform/CalendarStore.h"
#include "platform/FolderPicker.h"
#include "platform/Pasteboard.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"

namespace sunpane {

/// What the user chooses in the settings, but for the panel's background. Every choice is kept and takes effect at
/// once.
///
/// One instance, owned by the start-up code; main thread only. Values are read anew at every question, so that what
/// another program changed shows too.
class SettingsModel : public Observable {
public:
    static constexpr const char* pickerPrompt = "Watch This Folder";

    /// Everything outlives it.
    struct Collaborators {
        UserDefaults& defaults;
        const LocalNotifications& notifications;
        LoginItem& loginItem;
        const CalendarStore& calendars;
        Workspace& workspace;
        FolderPicker& folderPicker;
        Pasteboard& pasteboard;
        /// Takes the quick-capture setting up.
        std::function<void()> registerHotkeyAnew;
        /// Looks at the calendars with the new choice of what becomes a todo.
        std::function<void()> readCalendarsAnew;
        /// Where this run of the program has its todos and flags.
        std::string storesFolder;
    };

    explicit SettingsModel(Collaborators collaborators);

    bool canLaunchAtLogin() const { return with_.loginItem.isAvailable(); }
    /// As the user left the switch where the desktop refused, otherwise as the desktop has it.
    bool launchAtLogin() const;
    void setLaunchAtLogin(bool on);
    /// Why the last change failed; nothing when it did not.
    const std::optional<std::string>& loginItemError() const { return loginItemError_; }

    /// Whether Control+Space opens the panel from anywhere.
    bool quickCapture() const;
    void setQuickCapture(bool on);

    /// Whether events that are really tasks become todos.
    bool calendarTodos() const;
    void setCalendarTodos(bool on);

    /// All calendars by title.
    std::vector<CalendarInfo> calendars() const;
    /// Whether everything on the calendar becomes a todo.
    bool isTodoCalendar(const std::string& identifier) const;
    void setTodoCalendar(const std::string& identifier, bool on);

    /// The folder of briefings now.
    std::string watchedFolder() const;
    bool usesDefaultFolder() const;
    /// Where todos and flags are until the next start, when that is not the folder of briefings.
    std::optional<std::string> otherStoresFolder() const;
    /// Without a folder, the default one.
    void setFolder(const std::optional<std::string>& folder);
    void pickFolder();
    void openFolder();

    enum class Task { delivery, morning, evening };
    /// The text for an assistant, around the folder of now.
    std::string task(Task task) const;
    void copy(Task task);

    /// Another program changed settings: what the program keeps of them is taken up.
    void changedOutside();

private:
    std::vector<std::string> todoCalendars() const;
    void setBool(std::string_view key, bool on);

    Collaborators with_;
    // Counts only while there is an error.
    bool refusedLaunchAtLogin_ = false;
    std::optional<std::string> loginItemError_;
    // What the rest of the program was last told.
    std::string knownFolder_;
    bool knownQuickCapture_;
    bool knownCalendarTodos_;
    std::vector<std::string> knownTodoCalendars_;
    std::shared_ptr<SettingsModel*> self_;
};

}  // namespace sunpane
