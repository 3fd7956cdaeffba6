#include <chrono>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "ProgramRules.h"
#include "SimulatedProgram.h"
#include "app/TodoActions.h"
#include "base/Dates.h"
#include "nowplaying/PlayerScripts.h"

// The whole program but for its windows and adapters: a user who hovers, swipes, captures, edits, ticks, takes back and
// goes away, an agent that writes, rewrites and deletes, calendars and players that change, and a machine that sleeps,
// travels, loses its screens, runs out of disk, sets its clock back and dies. After every step the rules are checked.
namespace sunpane::testing {
namespace {

class Simulation {
public:
    explicit Simulation(std::uint64_t seed) : random_(seed) {
        static constexpr CalendarAccess accesses[] = {CalendarAccess::full, CalendarAccess::denied,
                                                      CalendarAccess::notDetermined};
        world_.calendars.status = accesses[below(3)];
        start();
        settle("start");
    }
    ~Simulation() { program_.reset(); }

    /// From one morning to the next.
    void day() {
        for (auto steps = 15 + below(40); steps > 0; --steps) {
            note(act());
            settle("");
            if (chance(8)) rest();
        }
        rest();
        endFault();
        note(sleep(3600.0 * (5 + static_cast<double>(below(9)))));
        settle("");
    }

    const std::vector<std::string>& log() const { return log_; }
    std::size_t steps() const { return steps_; }

private:
    std::uint64_t below(std::uint64_t bound) { return random_() % bound; }
    bool chance(std::uint64_t oneIn) { return below(oneIn) == 0; }
    double fraction() { return static_cast<double>(below(1'000'000)) / 1e6; }
    template <class T, std::size_t n>
    const T& pick(const T (&list)[n]) {
        return list[below(n)];
    }
    Instant now() const { return world_.platform.clock.now(); }
    NotchViewModel& model() { return program_->model; }
    TodoStore& todos() { return program_->model.todoStore(); }
    bool hasPanel() const { return world_.windows.count() == 1; }

    void note(std::string what) {
        ++steps_;
        log_.push_back(LocalCalendar(world_.platform.clock).iso8601(now()) + " " + std::move(what));
        if (log_.size() > keptLines) log_.erase(log_.begin(), log_.begin() + keptLines / 2);
    }
    void settle(std::string_view what) {
        if (!what.empty()) note(std::string(what));
        world_.platform.time.runPending();
        rules_.check(*program_);
        // Most steps follow each other as fast as a hand moves, some after a while.
        static constexpr Seconds pauses[] = {0, 0.02, 0.1, 0.3, 0.5, 1, 2, 7, 25, 70};
        world_.platform.time.advance(pick(pauses) * (1 + fraction()));
        rules_.check(*program_);
    }

    std::string act() {
        switch (below(11)) {
            case 0:
            case 1:
            case 2:
                return point();
            case 3:
            case 4:
                return onCards();
            case 5:
            case 6:
                return onTodos();
            case 7:
                return agent();
            case 8:
                return chance(2) ? calendar() : players();
            case 9:
                return desktop();
            default:
                return machine();
        }
    }

    // The user's pointer, and what else opens and folds the panel.

    std::string point() {
        switch (below(8)) {
            case 0:
            case 1:
                return hover();
            case 2:
                return leave();
            case 3:
                return turnAway();
            case 4:
                return quickCapture();
            case 5:
                return menu();
            case 6:
                world_.broadcasts.broadcast("app.dawnly.Dawnly.expand");
                world_.platform.time.runPending();
                require(model().expanded() && !model().hasUnread(), "asked to, the panel unfolds");
                return chance(2) ? "asked to unfold" : "asked to unfold, " + turnAway();
            default:
                world_.pointer.moveTo({fraction() * 3000 - 500, fraction() * 2000 - 200});
                return "pointer somewhere";
        }
    }

    std::string hover() {
        if (!hasPanel()) return "nothing to hover over";
        const Rect panel = world_.windows.last->rectangle;
        const bool mayOpen = !model().isExpandSuppressed();
        world_.pointer.moveTo({panel.midX() + fraction() * 40 - 20, panel.maxY() - fraction() * 9});
        world_.platform.time.runPending();
        if (mayOpen) require(model().expanded(), "the panel unfolds when the pointer reaches the notch");
        return mayOpen ? "hover" : "hover too early";
    }

    std::string leave() {
        if (!hasPanel()) return "nothing to leave";
        const Rect panel = world_.windows.last->rectangle;
        // From a screen above the way down could lead across the notch.
        world_.pointer.moveTo({panel.minX() - 150, world_.pointer.location.y});
        world_.platform.time.runPending();
        const bool wasOpen = model().expanded();
        const bool mayFold = model().reminderUIOpen() == 0 && !model().isKeptOpen();
        world_.pointer.moveTo({panel.minX() - 30 - fraction() * 99, panel.minY() - fraction() * 99});
        world_.platform.time.runPending();
        require(model().expanded() == (wasOpen && !mayFold), "leaving folds the panel unless it must stay");
        return "leave";
    }

    std::string turnAway() {
        const bool wasOpen = model().expanded();
        const bool mayFold = model().reminderUIOpen() == 0 && !model().isKeptOpen();
        chance(2) ? world_.workspace.activateAnother() : world_.pointer.pressElsewhere();
        world_.platform.time.runPending();
        require(model().expanded() == (wasOpen && !mayFold), "turning away folds the panel unless it must stay");
        return "turn to another program";
    }

    std::string quickCapture() {
        const bool wasOpen = model().expanded();
        const bool isHeard = world_.hotkeys.registrations == 1 && hasPanel();
        world_.hotkeys.press();
        world_.platform.time.runPending();
        require(model().expanded() == (isHeard ? !wasOpen : wasOpen), "the hotkey opens and folds");
        if (!isHeard) return "hotkey without effect";
        require(world_.windows.last->key == !wasOpen, "the panel has the keyboard while it is open for a todo");
        if (wasOpen) return "hotkey folds";
        todos().add(text());
        return chance(2) ? "capture" : "capture, " + turnAway();
    }

    std::string menu() {
        if (isMenuOpen_ || model().expanded()) {
            isMenuOpen_ = !isMenuOpen_;
            model().setReminderUIOpen(isMenuOpen_ ? 1 : 0);
        }
        return isMenuOpen_ ? "a menu is open" : "no menu is open";
    }

    // Cards.

    std::string onCards() {
        if (chance(4)) return takeBack();
        if (chance(6)) {
            chance(2) ? model().older() : model().newer();
            return "another day";
        }
        const Briefing* briefing = model().current();
        std::vector<BriefingItem> items;
        if (briefing != nullptr) {
            for (const auto& section : briefing->sections())
                items.insert(items.end(), section.items.begin(), section.items.end());
            std::erase_if(items, [this](const BriefingItem& item) { return flagsOf(item).hidden; });
        }
        if (items.empty()) return "no cards";
        if (chance(30)) {
            for (std::size_t i = 0; i < 3 * NotchUndo::maximumActions && !flagsOf(items.front()).hidden; ++i)
                swipe(items.front());
            return "swipe again and again";
        }
        return swipe(items[below(items.size())]);
    }

    struct Flags {
        bool prio, cleared, hidden;
        friend bool operator==(const Flags&, const Flags&) = default;
    };
    Flags flagsOf(const BriefingItem& item) {
        const ItemFlagStore& store = model().flagStore();
        return {store.isPrio(item.id()), store.isCleared(item.id()), store.isHidden(item.id())};
    }

    std::string swipe(const BriefingItem& item) {
        const double distance = (chance(2) ? 1 : -1) * (20.0 + static_cast<double>(below(120)));
        const bool acts = std::abs(distance) > ItemSwipeCoordinator::decisionDistance;
        const Flags before = flagsOf(item);
        const std::size_t actions = program_->undo.size();
        program_->swipes.pointerEntered(item);
        const auto scroll = [&](ScrollPhase phase, double x) {
            world_.pointer.scroll({phase, ScrollPhase::none, x, x / 9});
        };
        scroll(ScrollPhase::began, 0);
        for (int i = 0; i < 4; ++i)
            scroll(ScrollPhase::changed, distance / 4);
        scroll(ScrollPhase::ended, 0);
        program_->swipes.pointerLeft(item);
        const Flags after = flagsOf(item);
        const bool isFull = actions == NotchUndo::maximumActions;
        require(program_->undo.size() == actions + (acts && !isFull ? 1 : 0), "a swipe that counts can be taken back");
        if (!acts) require(after == before, "a short swipe changes nothing");
        if (acts && distance > 0) require(after.prio != before.prio, "to the right it flags");
        if (acts && distance < 0) require(after.cleared && after.hidden == (before.cleared), "to the left it clears");
        if (acts && chance(2)) {
            takeBack();
            require(flagsOf(item) == before, "a swipe that is taken back leaves no trace");
        }
        return "swipe " + std::string(item.id()) + " by " + std::to_string(distance);
    }

    std::string takeBack() {
        const std::size_t actions = program_->undo.size();
        // A todo that comes back, or gets its old text back, is what the user wants.
        std::vector<Todo> before = todos().todos();
        const bool swallowed = world_.pointer.press({"z", false, true, false, false});
        require(swallowed == (actions > 0), "the undo key is taken when there is something to take back");
        require(program_->undo.size() == actions - (actions > 0 ? 1 : 0), "one action is taken back at a time");
        for (const Todo& todo : before)
            rules_.mayLose(todo.id);
        for (const Todo& todo : before)
            require(todos().indexOf(todo.id).has_value(), "taking back removes nothing");
        return "take back";
    }

    // Todos.

    std::string onTodos() {
        if (todos().todos().empty() || chance(4)) {
            const std::string what = text();
            const std::size_t before = todos().todos().size();
            todos().add(what);
            require(todos().todos().size() == before + 1, "what is typed is added");
            return "add " + what;
        }
        const Todo todo = todos().todos()[below(todos().todos().size())];
        switch (below(8)) {
            case 0:
            case 1:
                todo_actions::toggle(todos(), todo.id);
                return "tick " + todo.text;
            case 2:
                todos().togglePrio(todo.id);
                return "star " + todo.text;
            case 3:
                return edit(todo);
            case 4:
                rules_.mayLose(todo.id);
                todo_actions::removeWithUndo(todos(), todo.id, program_->undo);
                return "delete " + todo.text;
            case 5: {
                static const std::optional<std::string> rules[] = {std::nullopt, "daily", "weekly"};
                const Instant date = now() + static_cast<double>(below(259200)) - 3600;  // within three days
                todos().setReminder(todo.id, date, pick(rules));
                return "remind of " + todo.text;
            }
            case 6:
                return clickNotification();
            default:
                todos().move(todo.id, static_cast<std::ptrdiff_t>(below(9)) - 2);
                return "move " + todo.text;
        }
    }

    std::string edit(const Todo& todo) {
        if (model().expanded() && hasPanel()) {
            program_->notifications.post(notification::makeNotchKey);
            require(world_.windows.last->key, "who edits has the keyboard");
            require(model().isKeptOpen(), "the panel stays open for who edits");
        }
        rules_.mayLose(todo.id);
        const std::string changed = text();
        todos().rename(todo.id, changed);
        program_->undo.push([this, id = todo.id, was = todo.text] { todos().rename(id, was); });
        return "rename " + todo.text + " to " + changed;
    }

    std::string clickNotification() {
        if (world_.notificationService.shown.empty() || !world_.notificationService.click) return "no notification";
        const std::size_t opened = world_.workspace.opened.size();
        const auto shown = world_.notificationService.shown.back();
        world_.notificationService.click(shown.number);
        world_.platform.time.runPending();
        require(world_.workspace.opened.size() <= opened + 1, "a click opens one address at most");
        return "click on " + shown.body;
    }

    // The agent.

    std::string text() {
        static constexpr std::string_view words[] = {"invoice", "**ACME**", "March", "plants", "water",    "deck",
                                                     "`build`", "contract", "Café",  "call",   "tomorrow", "🔥 hot"};
        std::string result(pick(words));
        for (auto more = below(4); more > 0; --more)
            result += " " + std::string(pick(words));
        return result + " " + std::to_string(below(200));
    }

    std::string briefing() {
        std::string markdown = "# Day " + std::to_string(below(100)) + "\n";
        for (auto sections = below(4); sections > 0; --sections) {
            markdown += "### Section " + std::to_string(below(5)) + "\nSome words.\n";
            for (auto cards = below(14); cards > 0; --cards)
                markdown += "- " + text() + "\n";
        }
        markdown += "### Action Items\n";
        for (auto items = below(3); items > 0; --items)
            markdown += (chance(4) ? "- [x] " : "- [ ] ") + text() + "\n";
        if (chance(20)) markdown += "\xFF\xC3 not text at all \x01";
        return markdown;
    }

    std::string agent() {
        const LocalCalendar calendar(world_.platform.clock);
        const double daysAgo = chance(3) ? static_cast<double>(below(5)) - 1 : 0;
        const std::string name = calendar.format(now() - daysAgo * 86400, "yyyy-MM-dd") + ".md";
        const auto& folder = isAway_ ? world_.other : world_.home;
        std::string what = "agent writes " + name;
        if (chance(5)) {
            std::error_code ignored;
            std::filesystem::remove(folder / name, ignored);
            what = "agent deletes " + name;
        } else {
            folder.write(name, briefing());
        }
        // An event may go missing; the next poll finds the change.
        if (!chance(5)) world_.folderEvents.tell(folder.path(), name);
        return what;
    }

    // Calendars and players.

    std::string calendar() {
        auto& events = world_.calendars.all;
        std::erase_if(events, [&](const CalendarEvent& event) { return *event.end < now() - 86400; });
        std::string what;
        if (chance(6) && world_.calendars.status == CalendarAccess::notDetermined && world_.calendars.isAsked()) {
            world_.calendars.answer(chance(2));
            what = "the user answers";
        } else if (events.empty() || chance(2)) {
            events.push_back(timedEvent(text(), soon(), 600.0 * static_cast<double>(1 + below(10))));
            if (chance(2)) events.back().url = "https://zoom.us/j/" + std::to_string(below(1000));
            what = "new event";
        } else if (chance(2)) {
            CalendarEvent& event = events[below(events.size())];
            event.start = soon();
            event.end = *event.start + 1800;
            what = "moved event";
        } else {
            events.erase(events.begin() + static_cast<std::ptrdiff_t>(below(events.size())));
            what = "cancelled event";
        }
        world_.calendars.change();
        return what;
    }
    Instant soon() { return {std::floor((now() + static_cast<double>(below(86400))).sinceReference)}; }

    std::string players() {
        static constexpr Player natives[] = {Player::spotify, Player::music};
        const Player player = pick(natives);
        const std::string id(bundleIdentifier(player));
        if (chance(3)) {
            world_.applications.running.erase(id);
            return "a player ends";
        }
        world_.applications.running.insert(id);
        static constexpr std::string_view states[] = {"playing", "paused", "stopped", "nonsense", ""};
        world_.scripts.reply(player, std::string(pick(states)) + "|||" + text() + "|||Artist|||https://a.b/" +
                                         std::to_string(below(9)) + ".png");
        while (!world_.covers.requests.empty())
            world_.covers.arrive(world_.covers.requests.front().first, chance(2) ? pixel(7) : nullptr);
        if (chance(2)) program_->nowPlaying.playPause();
        world_.scripts.sent.clear();
        return "a player changes";
    }

    // The desktop.

    std::string desktop() {
        switch (below(6)) {
            case 0:
            case 1:
                world_.spaces.activeType = chance(5) ? 2 : chance(4) ? 4 : 0;
                world_.spaces.switchTo(1 + below(4), !chance(3));
                return "space " + std::to_string(world_.spaces.active);
            case 2:
                return changeScreens();
            case 3: {
                const bool isEnabled = !chance(4);
                world_.defaults.set(HotkeyManager::enabledKey, isEnabled);
                world_.hotkeys.ownedByAnother = chance(5);
                program_->hotkey.registerAnew();
                require(world_.hotkeys.registrations == (isEnabled && !world_.hotkeys.ownedByAnother ? 1 : 0),
                        "the hotkey follows its setting");
                return isEnabled ? "hotkey on" : "hotkey off";
            }
            case 4:
                world_.notificationService.setAvailable(!world_.notificationService.isAvailable);
                return "notification service comes or goes";
            default:
                return changeFolder();
        }
    }

    std::string changeScreens() {
        const Screen plain{Rect{0, 0, 1440, 900}, 0, {}, {}};
        const Screen notched{Rect{1440, 0, 1512, 982}, 38, Rect{1440, 944, 660, 38}, Rect{2280, 944, 672, 38}};
        const Screen tall{Rect{-1080, -400, 1080, 1920}, 0, {}, {}};
        const std::vector<Screen> choices[] = {{}, {plain}, {plain}, {notched, plain}, {tall, plain, notched}, {tall}};
        for (auto changes = 1 + below(3); changes > 0; --changes) {
            world_.screens.change(pick(choices));
            world_.platform.time.advance(fraction());
        }
        return std::to_string(world_.screens.screens.size()) + " screens";
    }

    std::string changeFolder() {
        isAway_ = !isAway_;
        world_.defaults.set(FolderBriefingProvider::folderDefaultsKey, (isAway_ ? world_.other : world_.home).path());
        program_->notifications.post(notification::briefingsFolderChanged);
        return isAway_ ? "another folder" : "the first folder";
    }

    // The machine.

    std::string machine() {
        switch (below(7)) {
            case 0:
                return sleep(static_cast<double>(below(40000)));
            case 1:
                world_.platform.time.jumpWallClock(now() - static_cast<double>(below(7200)));
                program_->center.wallClockChanged();
                return "clock set back";
            case 2: {
                static constexpr const char* zones[] = {"Europe/Amsterdam", "America/New_York", "Asia/Tokyo",
                                                        "Australia/Lord_Howe"};
                // What the last change brought about is told in the zone that the rules believe it to be told in.
                world_.platform.time.advance(2 * NotchViewModel::storeDebounce);
                rules_.check(*program_);
                world_.platform.clock.zone = pick(zones);
                return "zone " + world_.platform.clock.zone;
            }
            case 3:
                world_.platform.time.advance((chance(10) ? 20000 : 600) * fraction());
                return "time passes";
            case 4:
                return beginFault();
            case 5:
                return restart();
            default:
                return crash();
        }
    }

    std::string sleep(Seconds span) {
        world_.platform.time.jumpWallClock(now() + span);
        world_.workspace.wake();
        return "sleep of " + std::to_string(span);
    }

    std::string beginFault() {
        if (chance(2)) {
            world_.disk.freeBytes = below(3000);
        } else {
            world_.disk.readOnlyFolders.insert(world_.home.path());
        }
        hasFault_ = true;
        return "the disk fails";
    }
    void endFault() {
        world_.disk.freeBytes = std::numeric_limits<std::size_t>::max();
        world_.disk.readOnlyFolders.clear();
        if (!std::exchange(hasFault_, false)) return;
        note("the disk is well again");
        world_.platform.time.advance(5);
    }

    void prepareEnd() {
        endFault();
        rules_.check(*program_);
        if (isAway_) note(changeFolder());
        // A change like any other: it takes what has lapsed out of the file, where a clock that was set back would find
        // it alive.
        model().flagStore().setPrio("no-card", "no card", false);
        world_.platform.time.runPending();
    }

    std::string restart() {
        prepareEnd();
        program_->storeFiles.drain();
        end();
        startAgain();
        return "restart";
    }

    std::string crash() {
        prepareEnd();
        world_.disk.dieAfter(0);
        end();
        world_.disk.revive();
        startAgain();
        return "crash and restart";
    }

    void end() {
        lastTodos_ = todos().todos();
        lastFlags_ = model().flagStore().state();
        isMenuOpen_ = false;
        program_.reset();
        world_.spaces.levels.clear();  // the desktop takes back what a program leaves
        rules_.forget();
        world_.platform.time.runPending();
        require(world_.platform.time.pendingCount() == 0, "no timer outlives the program");
    }

    void startAgain() {
        start();
        world_.platform.time.runPending();
    }

    void start() {
        program_ = std::make_unique<Program>(world_);
        require(todos().todos() == lastTodos_, "the next start finds every todo");
        require(model().flagStore().state() == lastFlags_, "the next start finds every flag");
        rules_.follow(*program_);
        program_->start();
    }

    // Nobody does anything for so long that all that was under way is over.
    void rest() {
        endFault();
        if (isMenuOpen_) menu();
        if (hasPanel()) {
            const Rect panel = world_.windows.last->rectangle;
            world_.pointer.moveTo({panel.minX() - 100 - fraction(), panel.minY() - 100});
        }
        world_.platform.time.advance(NotchController::keepOpenForEditing + FolderBriefingProvider::pollInterval + 2);
        // A pointer that has not moved since folds nothing.
        leave();
        world_.platform.time.advance(NotchController::settledDelay + NotchViewModel::storeDebounce + 3);
        note("rest");
        rules_.check(*program_);
        rules_.checkAtRest(*program_);
    }

    static constexpr std::size_t keptLines = 400;

    std::mt19937_64 random_;
    World world_;
    std::unique_ptr<Program> program_;
    ProgramRules rules_{world_};
    std::vector<Todo> lastTodos_;
    FlagState lastFlags_;
    bool isMenuOpen_ = false;
    bool isAway_ = false;
    bool hasFault_ = false;
    std::vector<std::string> log_;
    std::size_t steps_ = 0;
};

bool runSeed(std::uint64_t seed, int days, std::size_t& steps) {
    Simulation simulation(seed);
    for (int day = 0; day < days; ++day) {
        try {
            simulation.day();
        } catch (const Violation& violation) {
            const auto& log = simulation.log();
            for (std::size_t i = log.size() > 80 ? log.size() - 80 : 0; i < log.size(); ++i)
                std::cerr << log[i] << '\n';
            std::cerr << "seed " << seed << ", day " << day << ": broken rule: " << violation.what() << '\n';
            return false;
        }
    }
    steps += simulation.steps();
    return true;
}

}  // namespace
}  // namespace sunpane::testing

/// Usage: sunpane_program_simulation [--seed FIRST] [--seeds COUNT] [--days DAYS]
int main(int argc, char** argv) {
    std::uint64_t first = 1;
    std::uint64_t count = 10;
    int days = 10;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string_view option = argv[i];
        if (option == "--seed") first = std::strtoull(argv[i + 1], nullptr, 10);
        if (option == "--seeds") count = std::strtoull(argv[i + 1], nullptr, 10);
        if (option == "--days") days = std::atoi(argv[i + 1]);
    }
    const auto begin = std::chrono::steady_clock::now();
    std::size_t steps = 0;
    for (std::uint64_t seed = first; seed < first + count; ++seed) {
        if (!sunpane::testing::runSeed(seed, days, steps)) return 1;
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    std::cout << count << " seeds of " << days << " days, " << steps << " steps in " << std::lround(took.count())
              << " s: every rule held\n";
    return 0;
}
