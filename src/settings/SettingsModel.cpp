#include "settings/SettingsModel.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "base/NotificationNames.h"
#include "base/Text.h"
#include "calendar/CalendarFallback.h"
#include "core/briefing/FolderBriefingProvider.h"
#include "notch/HotkeyManager.h"
#include "onboarding/Prompts.h"

namespace sunpane {
SettingsModel::SettingsModel(Collaborators collaborators)
    : with_(std::move(collaborators)),
      knownFolder_(watchedFolder()),
      knownQuickCapture_(quickCapture()),
      knownCalendarTodos_(calendarTodos()),
      knownTodoCalendars_(todoCalendars()),
      self_(std::make_shared<SettingsModel*>(this)) {}

bool SettingsModel::launchAtLogin() const {
    return loginItemError_ ? refusedLaunchAtLogin_ : with_.loginItem.isEnabled();
}

void SettingsModel::setLaunchAtLogin(bool on) {
    announceChange();
    refusedLaunchAtLogin_ = on;
    loginItemError_ = with_.loginItem.set(on);
}

bool SettingsModel::quickCapture() const {
    return HotkeyManager::isEnabled(with_.defaults);
}

void SettingsModel::setQuickCapture(bool on) {
    setBool(HotkeyManager::enabledKey, on);
    knownQuickCapture_ = on;
    with_.registerHotkeyAnew();
}

bool SettingsModel::calendarTodos() const {
    return with_.defaults.read<bool>(CalendarFallback::todosEnabledKey).valueOr(true);
}

void SettingsModel::setCalendarTodos(bool on) {
    setBool(CalendarFallback::todosEnabledKey, on);
    knownCalendarTodos_ = calendarTodos();
    with_.readCalendarsAnew();
}

std::vector<CalendarInfo> SettingsModel::calendars() const {
    auto all = with_.calendars.calendars();
    const auto order = [](const CalendarInfo& info) {
        return std::tuple(text::lowercased(info.title), info.title, info.identifier);
    };
    std::sort(all.begin(), all.end(), [&](const auto& a, const auto& b) { return order(a) < order(b); });
    return all;
}

std::vector<std::string> SettingsModel::todoCalendars() const {
    return with_.defaults.read<std::vector<std::string>>(CalendarFallback::todoCalendarsKey).valueOr({});
}

bool SettingsModel::isTodoCalendar(const std::string& identifier) const {
    const auto chosen = todoCalendars();
    return std::find(chosen.begin(), chosen.end(), identifier) != chosen.end();
}

void SettingsModel::setTodoCalendar(const std::string& identifier, bool on) {
    auto chosen = todoCalendars();
    std::erase(chosen, identifier);
    if (on) chosen.push_back(identifier);
    announceChange();
    with_.defaults.set(CalendarFallback::todoCalendarsKey, std::move(chosen));
    knownTodoCalendars_ = todoCalendars();
    with_.readCalendarsAnew();
}

std::string SettingsModel::watchedFolder() const {
    return FolderBriefingProvider::currentDirectory(with_.defaults);
}

bool SettingsModel::usesDefaultFolder() const {
    return watchedFolder() == FolderBriefingProvider::defaultDirectory();
}

std::optional<std::string> SettingsModel::otherStoresFolder() const {
    return watchedFolder() == with_.storesFolder ? std::nullopt : std::optional(with_.storesFolder);
}

void SettingsModel::setFolder(const std::optional<std::string>& folder) {
    announceChange();
    if (folder) {
        with_.defaults.set(FolderBriefingProvider::folderDefaultsKey, *folder);
    } else {
        with_.defaults.remove(FolderBriefingProvider::folderDefaultsKey);
    }
    knownFolder_ = watchedFolder();
    with_.notifications.post(notification::briefingsFolderChanged);
}

void SettingsModel::changedOutside() {
    announceChange();
    if (std::exchange(knownQuickCapture_, quickCapture()) != quickCapture()) with_.registerHotkeyAnew();
    const bool areTodosOthers = std::exchange(knownCalendarTodos_, calendarTodos()) != calendarTodos();
    const bool areCalendarsOthers = std::exchange(knownTodoCalendars_, todoCalendars()) != todoCalendars();
    if (areTodosOthers || areCalendarsOthers) with_.readCalendarsAnew();
    if (std::exchange(knownFolder_, watchedFolder()) != watchedFolder()) {
        with_.notifications.post(notification::briefingsFolderChanged);
    }
}

void SettingsModel::pickFolder() {
    with_.folderPicker.pick(watchedFolder(), pickerPrompt,
                            [weak = std::weak_ptr(self_)](const std::optional<std::string>& folder) {
                                const auto self = weak.lock();
                                if (self && folder) (*self)->setFolder(folder);
                            });
}

void SettingsModel::openFolder() {
    with_.workspace.revealFolder(watchedFolder());
}

std::string SettingsModel::task(Task task) const {
    switch (task) {
        case Task::delivery:
            return prompts::deliveryBlock(watchedFolder());
        case Task::morning:
            return prompts::morningTask(watchedFolder());
        case Task::evening:
            return prompts::eveningTask(watchedFolder());
    }
    return {};
}

void SettingsModel::copy(Task task) {
    with_.pasteboard.setText(this->task(task));
}

void SettingsModel::setBool(std::string_view key, bool on) {
    announceChange();
    with_.defaults.set(key, on);
}

}  // namespace sunpane
