#include "ProgramRules.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>
#include <vector>

#include "base/Dates.h"
#include "base/Text.h"
#include "core/stores/FlagFile.h"

namespace sunpane::testing {
namespace {

using Json = nlohmann::json;

// The timers of a program that is left alone: the looks at the pointer, at the space, at the folder and at the two
// store files, the clean-up, the turn of the day, the next meeting; and one more while a reminder is pending.
constexpr std::size_t timersAtRest = 8;

std::vector<std::string> untouchedByHand(const NotchViewModel& model, const ItemFlagStore& flags) {
    std::vector<std::string> texts;
    if (model.briefings().empty() || model.briefings().front().id == CalendarFallback::briefingID) return texts;
    for (const auto& section : model.briefings().front().sections()) {
        for (const auto& item : section.items) {
            if (flags.isPrio(item.id()) || flags.isCleared(item.id())) continue;
            texts.emplace_back(item.markdown());
            std::erase_if(texts.back(), [](char c) { return c == '*' || c == '`'; });
        }
    }
    if (texts.size() > NotchViewModel::maximumUntouched) texts.resize(NotchViewModel::maximumUntouched);
    return texts;
}

std::vector<std::string> remindersByHand(const TodoStore& todos, const Clock& clock) {
    const LocalCalendar calendar(clock);
    std::vector<std::string> lines;
    for (const Todo& todo : todos.todos()) {
        if (todo.done || !todo.remindAt) continue;
        lines.push_back(todo.text + " — reminder set for " + calendar.format(*todo.remindAt, "yyyy-MM-dd HH:mm"));
        if (todo.remindRepeat) lines.back() += " (repeats " + *todo.remindRepeat + ")";
    }
    return lines;
}

}  // namespace

void ProgramRules::follow(Program& program) {
    zoneOfLastTodoChange_ = world_.platform.clock.zone;
    followed_ = std::make_shared<Program*>(&program);
    modelChanges_ = program.model.onWillChange([this] {
        world_.platform.time.post([this, weak = std::weak_ptr(followed_)] {
            const auto followed = weak.lock();
            if (followed && (*followed)->model.todoStore().lastImportDay() != lastImportDay_) sawAnotherDay_ = true;
        });
    });
    todoChanges_ =
        program.model.todoStore().onWillChange([this] { zoneOfLastTodoChange_ = world_.platform.clock.zone; });
}

void ProgramRules::forget() {
    todoChanges_.cancel();
    modelChanges_.cancel();
    followed_.reset();
    require(world_.windows.count() == 0, "no window outlives the program");
    require(world_.folderEvents.watcherCount() == 0, "no folder is watched after the program's end");
    require(world_.hotkeys.registrations == 0, "the hotkey is given back at the program's end");
}

void ProgramRules::check(Program& program) {
    const NotchViewModel& model = program.model;
    require(world_.folderEvents.watcherCount() <= 1, "there is never more than one provider");
    require(model.reminderUIOpen() >= 0, "menus are never closed more often than opened");
    require(program.undo.size() <= NotchUndo::maximumActions, "the undo stack is bounded");
    require(model.briefings().empty() ? model.currentIndex() == 0 : model.currentIndex() < model.briefings().size(),
            "the briefing on screen is in the list");
    require(std::is_sorted(model.briefings().begin(), model.briefings().end(),
                           [](const Briefing& a, const Briefing& b) {
                               return b.id != CalendarFallback::briefingID &&
                                      (a.id == CalendarFallback::briefingID || a.date > b.date);
                           }),
            "the newest briefing comes first");
    const bool isWanted = HotkeyManager::isEnabled(world_.defaults);
    require(world_.hotkeys.registrations <= (isWanted ? 1 : 0), "the hotkey is registered once, and only when wanted");
    require(world_.windows.count() <= 1, "there is never more than one panel");
    require(world_.spaces.levels.size() <= 1, "there is never more than one private space");
    if (world_.windows.count() == 1 && world_.spaces.hasPrivate) {
        const auto* panel = world_.windows.last;
        require(panel->visible, "the panel is on screen");
        const auto space = world_.spaces.windows.find(panel->id);
        require(space != world_.spaces.windows.end() && world_.spaces.levels.contains(space->second),
                "the panel is in the private space");
    }
    checkTodos(program);
}

void ProgramRules::checkTodos(Program& program) {
    const TodoStore& store = program.model.todoStore();
    std::map<Uuid, Expected> now;
    for (const Todo& todo : store.todos())
        now[todo.id] = {todo.text, todo.done};
    const bool isNewDay = std::exchange(sawAnotherDay_, false) || store.lastImportDay() != lastImportDay_;
    for (const auto& [id, before] : expected_) {
        const auto found = now.find(id);
        if (found == now.end()) {
            require(isNewDay && before.done, "no todo is lost: " + before.text);
        } else {
            require(found->second.text == before.text, "no todo changes its text by itself: " + before.text);
        }
    }
    expected_ = std::move(now);
    lastImportDay_ = store.lastImportDay();
}

void ProgramRules::checkAtRest(Program& program) {
    const NotchViewModel& model = program.model;
    const bool hasPanel = world_.windows.count() == 1;
    // Without a screen there is nothing to fold.
    require(!model.expanded() || !hasPanel, "a panel that nobody uses is folded");
    require(!hasPanel || !world_.windows.last->key, "a folded panel has given the keyboard back");
    require(!model.highlightTodoID(), "no todo stays highlighted");

    const auto screens = world_.screens.all();
    if (!screens.empty()) {
        require(world_.windows.count() == 1, "where there is a screen there is a panel");
        const auto screen = world_.screens.notched().value_or(screens.front());
        require(world_.windows.last->rectangle == NotchMetrics(screen).panelFrame(), "the panel hangs from its screen");
    }

    const std::size_t looks = world_.scripts.sent.size();
    world_.platform.time.advance(5);
    require(model.expanded() || world_.scripts.sent.size() == looks,
            "while the panel is folded nobody asks the players");
    bool isPending = false;
    program.center.pending([&](auto requests) { isPending = !requests.empty(); });
    world_.platform.time.runPending();
    std::size_t timers = world_.platform.time.pendingCount();
    // The pointer is watched from the first panel on; an open panel also follows what plays.
    const std::size_t meant = timersAtRest - (hasPanel ? 0 : 1) + (model.expanded() ? 1 : 0);
    if (timers > meant) {
        // A minute or a day that just turned may have changed something, which is followed for a moment.
        world_.platform.time.advance(3 * NotchViewModel::storeDebounce);
        timers = world_.platform.time.pendingCount();
    }
    require(timers >= meant && timers <= meant + (isPending ? 1 : 0),
            "a folded panel keeps the timers it is meant to: " + std::to_string(timers));
    checkBriefings(program);
    checkFeedback(program);
    checkReport(program);
}

void ProgramRules::checkBriefings(Program& program) const {
    std::set<std::string> files;
    const std::string folder = FolderBriefingProvider::currentDirectory(world_.defaults);
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path());
        const std::string content(std::istreambuf_iterator<char>(file), {});
        if (text::isValidUtf8(content)) files.insert(entry.path().filename());
    }
    std::set<std::string> listed;
    const LocalCalendar calendar(program.clock);
    bool isForToday = false;
    for (const auto& briefing : program.model.briefings()) {
        if (briefing.id == CalendarFallback::briefingID) continue;
        listed.insert(briefing.id);
        isForToday = isForToday || calendar.isSameDay(briefing.date, program.clock.now());
    }
    // While the user is being asked whether the calendars may be read, the list waits for the answer.
    require(listed == files || world_.calendars.isAsked(), "the list holds what the folder holds");
    const bool hasSchedule =
        !program.model.briefings().empty() && program.model.briefings().front().id == CalendarFallback::briefingID;
    // The schedule of a day without a briefing is taken away again when its turn comes, half an hour later at most.
    require(!hasSchedule || world_.calendars.access() == CalendarAccess::full || isForToday,
            "the calendar is shown to those who allowed it");
}

void ProgramRules::checkFeedback(Program& program) const {
    const ItemFlagStore& flags = program.model.flagStore();
    require(!flags.hasUnwritten() && !program.model.todoStore().hasUnwritten(), "what can be written is written");
    const auto file = world_.disk.content(flags.feedbackURL());
    if (!file) return;
    const Json feedback = Json::parse(*file, nullptr, false);
    require(feedback.is_object(), "the feedback is JSON");
    std::multiset<std::string> cleared;
    for (const auto& [key, text] : flags.state().cleared)
        cleared.insert(text);
    require(feedback["cleared"] == Json(cleared), "the feedback tells what was cleared");
    std::multiset<std::string> told;
    for (const auto& entry : feedback["prio"])
        told.insert(entry["text"].get<std::string>());
    std::multiset<std::string> prio;
    for (const auto& [key, text] : flags.state().prio)
        prio.insert(text);
    require(told == prio, "the feedback tells the priorities");
    // Nor is anything said of cards while the list waits for the user's answer.
    require(world_.calendars.isAsked() || feedback["untouched"] == Json(untouchedByHand(program.model, flags)),
            "the feedback tells what was left untouched");
    // The lines keep the clock that showed when the list last changed.
    if (zoneOfLastTodoChange_ == world_.platform.clock.zone) {
        require(feedback["reminders"] == Json(remindersByHand(program.model.todoStore(), program.clock)),
                "the feedback tells the reminders");
    }
}

void ProgramRules::checkReport(Program& program) {
    world_.broadcasts.broadcast("app.dawnly.Dawnly.report");
    world_.platform.time.runPending();
    const Json report = Json::parse(world_.report, nullptr, false);
    require(report.is_object() && report.size() == 12, "the report has its twelve members");
    require(report["expanded"] == program.model.expanded() &&
                report["briefings"] == static_cast<int>(program.model.briefings().size()) &&
                report["panelVisible"] == (world_.windows.count() == 1) && report["spaceID"] == world_.spaces.active,
            "the report tells the truth");
}

}  // namespace sunpane::testing
