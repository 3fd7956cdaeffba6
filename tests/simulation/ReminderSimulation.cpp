#include <iostream>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "SeededRuns.h"
#include "app/TodoActions.h"
#include "app/TodoReminders.h"
#include "base/Dates.h"
#include "calendar/CalendarFallback.h"
#include "calendar/MeetingWatcher.h"
#include "core/stores/TodoStore.h"
#include "reminders/PendingNotifications.h"
#include "reminders/ReminderScheduler.h"
#include "support/SimulatedCalendar.h"
#include "support/SimulatedFileSystem.h"
#include "support/SimulatedNotifications.h"
#include "support/SimulatedPlatform.h"
#include "support/SimulatedUserDefaults.h"

// A user who sets, changes and drops reminders, a calendar whose meetings come, move and go, a traveller's zones, a
// clock that is set, a machine that sleeps, a program that is restarted and a notification service that comes and goes,
// over simulated months. After every step: one request at most is pending for each identifier, none was lost, none is
// late, none came early, and nothing was shown twice for one moment.
namespace sunpane::testing {
namespace {

/// The parts of the program that live from its start to its end.
struct Program {
    Program(SimulatedPlatform& platform, SimulatedFileSystem& disk, SimulatedCloudFiles& cloud,
            SimulatedNotificationService& service, SimulatedCalendar& calendars, const UserDefaults& defaults)
        : storeFiles({disk, cloud, platform.clock, platform.runLoop, platform.queues, [](Seconds) {}}, "/state"),
          todos(storeFiles, "/briefings"),
          center({service, platform.clock, platform.runLoop, disk, platform.queues}, "/state/notifications.json"),
          scheduler(center, platform.clock),
          fallback(calendars, defaults, platform.clock),
          meetings({calendars, fallback, scheduler, platform.clock, platform.runLoop}),
          reminders({todos, scheduler, center, platform.clock, platform.runLoop}) {}

    StoreFiles storeFiles;
    TodoStore todos;
    PendingNotifications center;
    ReminderScheduler scheduler;
    CalendarFallback fallback;
    MeetingWatcher meetings;
    TodoReminders reminders;
    NotchUndo undo;
};

class Simulation {
public:
    explicit Simulation(std::uint64_t seed) : random_(seed) {
        disk_.makeFolder("/state");
        disk_.makeFolder("/briefings");
        defaults_.set("calendarTodosEnabled", false);
        service_.onShown = [this](const auto& shown) { noteShown(shown.body + '\n' + shown.title); };
        start();
        settle("start");
    }

    void step() {
        const std::string what = act();
        settle(what);
        check();
    }

    const std::vector<std::string>& log() const { return log_; }
    std::size_t shownCount() const { return shownCount_; }

private:
    // How far the reading of the clock may lie behind the highest that it ever showed. Further back, a daily reminder
    // rightly starts afresh.
    static constexpr Seconds maximumSetBack = 20 * 3600.0;
    static constexpr Seconds slack = PendingNotifications::longestSleep + 1;

    struct LastShown {
        CalendarTrigger trigger;
        std::string zone;
        CivilTime occurrence;
        std::uint64_t generation = 0;
    };

    std::uint64_t below(std::uint64_t bound) { return random_() % bound; }
    Instant now() const { return platform_.clock.now(); }
    LocalCalendar faceOf(const CalendarTrigger& trigger) const {
        return {trigger.timeZone.value_or(platform_.clock.zone), "en_US"};
    }
    // The clock's reading as seconds that can be compared across zones.
    double reading() const {
        return LocalCalendar("UTC", "en_US").instant(LocalCalendar(platform_.clock).civilTime(now())).sinceReference;
    }
    void start() {
        program_ = std::make_unique<Program>(platform_, disk_, cloud_, service_, calendars_, defaults_);
        ableSince_ = platform_.time.uptime();
    }

    void settle(const std::string& what) {
        platform_.time.runPending();
        highestReading_ = std::max(highestReading_, reading());
        log_.push_back(LocalCalendar(platform_.clock).iso8601(now()) + " " + what);
    }

    std::string act() {
        switch (below(24)) {
            case 0:
            case 1:
            case 2:
                return remind();
            case 3:
                return changeTodo();
            case 4:
            case 5:
            case 6:
            case 22:
            case 23:
                return changeCalendar();
            case 7:
            case 20:
            case 21:
                return jumpClock();
            case 8:
                return travel();
            case 9:
                return restart();
            case 10:
                service_.setAvailable(!service_.isAvailable);
                ableSince_ = platform_.time.uptime();
                return service_.isAvailable ? "service comes" : "service goes";
            default:
                return wait();
        }
    }

    std::string wait() {
        static constexpr Seconds spans[] = {1, 30, 61, 900, 3600, 20000, 90000, 200000};
        const Seconds span = spans[below(std::size(spans))] * (1 + static_cast<double>(below(100)) / 100);
        // In pieces, so that what was shown late or early is seen close to its moment.
        platform_.time.advance(span);
        return "wait " + std::to_string(span);
    }

    std::string remind() {
        TodoStore& todos = program_->todos;
        if (todos.todos().size() < 8) todos.add("todo " + std::to_string(++names_));
        const Todo todo = todos.todos()[below(todos.todos().size())];
        static const std::optional<std::string> rules[] = {std::nullopt, "daily", "weekly", "monthly"};
        const auto rule = rules[below(4)];
        const Instant date = now() + static_cast<double>(below(6 * 86400)) - 3600;
        todos.setReminder(todo.id, date, rule);
        ++generation_;
        return "remind of " + todo.text + " at " + LocalCalendar(platform_.clock).iso8601(date) + " " +
               rule.value_or("once");
    }

    std::string changeTodo() {
        TodoStore& todos = program_->todos;
        if (todos.todos().empty()) return "nothing";
        const Todo todo = todos.todos()[below(todos.todos().size())];
        ++generation_;
        switch (below(5)) {
            case 0:
                todo_actions::toggle(todos, todo.id);
                return "toggle " + todo.text;
            case 1:
                todo_actions::removeWithUndo(todos, todo.id, program_->undo);
                return "remove " + todo.text;
            case 2:
                program_->undo.undo();
                return "undo";
            case 3:
                todos.setReminder(todo.id, std::nullopt, std::nullopt);
                return "clear " + todo.text;
            default:
                todos.rename(todo.id, "todo " + std::to_string(++names_));
                return "rename " + todo.text + " to todo " + std::to_string(names_);
        }
    }

    std::string changeCalendar() {
        auto& events = calendars_.all;
        std::erase_if(events, [&](const CalendarEvent& event) { return *event.end < now() - 86400; });
        const std::uint64_t choice = below(4);
        std::string what;
        if (choice < 2 || events.empty()) {
            events.push_back(timedEvent("meeting " + std::to_string(++names_), soon(), 3600));
            if (below(2) == 0) events.back().url = "https://zoom.us/j/" + std::to_string(names_);
            what =
                "new " + *events.back().title + " at " + LocalCalendar(platform_.clock).iso8601(*events.back().start);
        } else if (choice == 2) {
            CalendarEvent& event = events[below(events.size())];
            event.start = soon();
            event.end = *event.start + 3600;
            what = "move " + *event.title + " to " + LocalCalendar(platform_.clock).iso8601(*event.start);
        } else {
            const auto at = events.begin() + static_cast<std::ptrdiff_t>(below(events.size()));
            what = "cancel " + *at->title;
            events.erase(at);
        }
        calendars_.change();
        return what;
    }
    Instant soon() { return {std::floor((now() + static_cast<double>(below(3 * 86400))).sinceReference)}; }

    std::string jumpClock() {
        const Instant before = now();
        const bool back = below(2) == 0;
        platform_.time.jumpWallClock(
            before + (back ? -static_cast<double>(below(36000)) : static_cast<double>(below(2 * 86400))));
        if (reading() < highestReading_ - maximumSetBack) {
            platform_.time.jumpWallClock(before);
            return "nothing";
        }
        jumped(below(2) == 0);
        return back ? "clock set back" : "clock set forward, or a sleep";
    }

    std::string travel() {
        static constexpr const char* zones[] = {"Europe/Amsterdam", "America/New_York", "Asia/Tokyo",
                                                "Australia/Lord_Howe", "America/Santiago"};
        const std::string before = platform_.clock.zone;
        platform_.clock.zone = zones[below(std::size(zones))];
        if (reading() < highestReading_ - maximumSetBack) platform_.clock.zone = before;
        jumped(true);
        return "zone " + platform_.clock.zone;
    }

    void jumped(bool isNoticed) {
        ableSince_ = platform_.time.uptime();
        if (isNoticed) program_->center.wallClockChanged();
    }

    std::string restart() {
        program_->storeFiles.drain();
        program_.reset();
        platform_.time.runPending();
        const Seconds span = static_cast<double>(below(3)) * static_cast<double>(below(100000));
        platform_.time.jumpWallClock(now() + span);
        start();
        return "restart after " + std::to_string(span);
    }

    std::vector<NotificationRequest> pending() {
        std::vector<NotificationRequest> requests;
        program_->center.pending([&](auto all) { requests = std::move(all); });
        platform_.time.runPending();
        return requests;
    }

    // The latest moment up to `until` that the request asks for, as its clock shows it.
    std::optional<CivilTime> latestOccurrence(const NotificationRequest& request, Instant until) const {
        const CalendarTrigger& trigger = request.trigger;
        const LocalCalendar face = faceOf(trigger);
        CivilDay day = addingDays(face.civilTime(until).day, 1);
        for (int i = 0; i < 70; ++i, day = addingDays(day, -1)) {
            if (trigger.year.value_or(day.year) != day.year || trigger.month.value_or(day.month) != day.month) continue;
            if (trigger.day.value_or(day.day) != day.day) continue;
            if (trigger.weekday.value_or(weekday(day)) != weekday(day)) continue;
            const CivilTime time{day, trigger.hour.value_or(0), trigger.minute.value_or(0), trigger.second.value_or(0)};
            const auto second = face.secondInstant(time);
            const bool isSecond = second && second == request.intended;
            if ((isSecond ? *second : face.instant(time)) <= until) return time;
        }
        return std::nullopt;
    }

    // Each text and title belongs to one identifier at a time.
    void noteShown(const std::string& content) {
        ++shownCount_;
        const NotificationRequest* request = nullptr;
        for (const auto* known : {&lastPending_, &justPending_}) {
            for (const auto& each : *known) {
                if (each.body + '\n' + each.title == content) request = &each;
            }
        }
        log_.push_back("  shown " + content.substr(0, content.find('\n')));
        for (const auto& event : calendars_.all) {
            if (content.substr(content.find('\n') + 1) != *event.title) continue;
            require(now() >= *event.start - ReminderScheduler::meetingLead, *event.title + " is announced early");
            require(now() < *event.start, *event.title + " is announced when it is too late");
            require(announced_.emplace(*event.title, event.start->sinceReference).second,
                    *event.title + " is announced twice");
        }
        // One that was made and shown within a step is not known; its moment is checked by the next step's rules.
        if (request == nullptr) return;
        shownNow_.insert(request->identifier);
        const auto occurrence = latestOccurrence(*request, now());
        require(occurrence.has_value(), request->identifier + " comes early");
        const auto last = lastShown_.find(request->identifier);
        if (last != lastShown_.end() && last->second.trigger == request->trigger &&
            (last->second.generation == generation_ || last->second.zone == platform_.clock.zone)) {
            require(*occurrence > last->second.occurrence, request->identifier + " is shown twice for one moment");
        }
        lastShown_.insert_or_assign(request->identifier,
                                    LastShown{request->trigger, platform_.clock.zone, *occurrence, generation_});
    }

    bool isWanted(const NotificationRequest& request) const {
        for (const auto& todo : program_->todos.todos()) {
            if (notification_id::ofTodo(todo.id) == request.identifier) return !todo.done && todo.remindAt.has_value();
        }
        for (const auto& event : calendars_.all) {
            if ("meeting-" + event.identifier != request.identifier) continue;
            return request.expires == event.start && *event.start < now() + MeetingWatcher::alertHorizon;
        }
        return false;
    }

    void check() {
        justPending_ = pending();
        std::set<std::string> identifiers;
        for (const auto& request : justPending_) {
            require(identifiers.insert(request.identifier).second, request.identifier + " is pending twice");
            if (request.identifier.starts_with("todo-"))
                require(isWanted(request), request.identifier + " is unwanted");
        }
        checkNothingLost(identifiers);
        checkReminders(identifiers);
        if (service_.isAvailable && platform_.time.uptime() - ableSince_ > slack) checkNothingLate();
        lastPending_ = justPending_;
        shownNow_.clear();
    }

    void checkNothingLost(const std::set<std::string>& identifiers) const {
        for (const auto& request : lastPending_) {
            if (identifiers.contains(request.identifier) || shownNow_.contains(request.identifier)) continue;
            const bool isOver = request.expires && *request.expires <= now();
            // A reminder that was set anew for a moment that is over never comes.
            const bool isNew = lastGeneration_ != generation_;
            require(!isWanted(request) || isOver || isNew, request.identifier + " is lost");
        }
    }

    void checkReminders(const std::set<std::string>& identifiers) {
        for (const auto& todo : program_->todos.todos()) {
            if (todo.done || !todo.remindAt) continue;
            const std::string identifier = notification_id::ofTodo(todo.id);
            if (identifiers.contains(identifier)) continue;
            require(!todo.remindRepeat, "the repeating " + identifier + " is lost");
            const bool isOver = std::floor(todo.remindAt->sinceReference / 60) * 60 <= now().sinceReference;
            require(isOver || lastShown_.contains(identifier) || shownNow_.contains(identifier),
                    identifier + " is lost before its time");
        }
        lastGeneration_ = generation_;
    }

    void checkNothingLate() {
        for (const auto& request : justPending_) {
            const auto due = latestOccurrence(request, now() - slack);
            if (!due) continue;
            if (!request.trigger.repeats) {
                require(false, request.identifier + " is late");
                continue;
            }
            // What came due before the request was made is not owed.
            const auto last = lastShown_.find(request.identifier);
            if (last == lastShown_.end() || last->second.trigger != request.trigger) continue;
            if (last->second.generation != generation_) continue;
            require(*due <= last->second.occurrence, "the repeating " + request.identifier + " is late");
        }
    }

    std::mt19937_64 random_;
    SimulatedPlatform platform_;
    SimulatedFileSystem disk_{platform_.clock};
    SimulatedCloudFiles cloud_;
    SimulatedUserDefaults defaults_;
    SimulatedNotificationService service_{platform_.runLoop};
    SimulatedCalendar calendars_;
    std::unique_ptr<Program> program_;
    double highestReading_ = 0;
    Seconds ableSince_ = 0;
    // Meetings that were announced, by name and start.
    std::set<std::pair<std::string, double>> announced_;
    std::uint64_t names_ = 0;
    // Counts what may make a request anew.
    std::uint64_t generation_ = 0;
    std::uint64_t lastGeneration_ = 0;
    std::vector<NotificationRequest> lastPending_;
    std::vector<NotificationRequest> justPending_;
    std::set<std::string> shownNow_;
    std::map<std::string, LastShown> lastShown_;
    std::size_t shownCount_ = 0;
    std::vector<std::string> log_;
};

}  // namespace
}  // namespace sunpane::testing

/// Usage: sunpane_reminder_simulation [--seed FIRST] [--seeds COUNT] [--steps STEPS]
int main(int argc, char** argv) {
    using sunpane::testing::Simulation;
    const sunpane::testing::SeededRuns runs(20, 400, "--steps", argc, argv);
    std::size_t shown = 0;
    constexpr std::size_t toldLines = 60;
    const bool held = runs.run<Simulation>(
        toldLines, [](Simulation& each) { each.step(); }, [&](const Simulation& each) { shown += each.shownCount(); });
    if (!held) return 1;
    std::cout << runs.seeds << " seeds of " << runs.rounds << " steps, " << shown
              << " notifications: every rule held\n";
    return 0;
}
