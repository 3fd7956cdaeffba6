#include <algorithm>
#include <cstdint>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "SeededRuns.h"
#include "StoreDriver.h"

namespace sunpane::testing {
namespace {

using Json = nlohmann::json;

/// What pruning leaves, found by comparing everything with everything.
FlagState prunedByHand(FlagState state, Instant now) {
    const auto date = [&](const std::string& key) {
        return state.dates.contains(key) ? state.dates.at(key) : Instant::distantPast();
    };
    for (const auto& [key, last] : state.dates) {
        if (now - last > ItemFlagStore::prioTTL) state.prio.erase(key);
        if (now - last > ItemFlagStore::clearedTTL && state.cleared.erase(key) > 0) state.hidden.erase(key);
    }
    std::erase_if(state.prio, [&](const auto& prio) {
        return std::any_of(state.cleared.begin(), state.cleared.end(), [&](const auto& cleared) {
            return date(cleared.first) > date(prio.first) &&
                   sameTopic(significantWords(prio.second), significantWords(cleared.second));
        });
    });
    for (const auto& [key, first] : state.firstFlagged) {
        if (now - first > ItemFlagStore::prioMaxAge) state.prio.erase(key);
    }
    const auto isFlagged = [&](const std::string& key) {
        return state.prio.contains(key) || state.cleared.contains(key);
    };
    std::erase_if(state.firstFlagged, [&](const auto& entry) { return !state.prio.contains(entry.first); });
    std::erase_if(state.dates, [&](const auto& entry) { return !isFlagged(entry.first); });
    std::erase_if(state.hidden, [&](const std::string& key) { return !isFlagged(key); });
    return state;
}

TodoState todoState(const TodoStore& store) {
    return {store.todos(), store.lastImportDay(), store.dismissed()};
}

std::set<Uuid> ids(const std::vector<Todo>& todos) {
    std::set<Uuid> result;
    for (const Todo& todo : todos)
        result.insert(todo.id);
    return result;
}

/// A user, an agent, another device and a machine that fails, from one seed. After every step the rules are checked.
class Simulation {
public:
    explicit Simulation(std::uint64_t seed) : random_(seed) {
        const StoreDriver::Place place{"/briefings", "/state", "Europe/Amsterdam", "en_US"};
        driver_ = std::make_unique<StoreDriver>(at_, place, [this](const Clock& clock) -> DriverDisk {
            disk_ = std::make_unique<SimulatedFileSystem>(clock);
            const Seconds granularities[] = {1e-9, 0.01, 1.0};
            disk_->granularity = granularities[random_() % 3];
            return {disk_.get(), disk_.get(),
                    [this](const auto& path, const auto& content) { disk_->writeExternally(path, content); }};
        });
    }
    ~Simulation() { driver_.reset(); }

    void day() {
        step("machine.wake", {}, 3600 * (6 + static_cast<double>(random_() % 20)));
        if (chance(30)) step("machine.zone", {{"zone", pick(zones)}});
        step("wait", {}, 3);
        morning();
        for (auto steps = 5 + random_() % 20; steps > 0; --steps) {
            switch (random_() % 20) {
                case 0:
                    crash();
                    break;
                case 1:
                    fault();
                    break;
                case 2:
                    device();
                    break;
                case 3:
                    step("restart", {}, 3);
                    break;
                default:
                    userStep();
            }
        }
    }

    const std::vector<std::string>& log() const { return log_; }

private:
    static constexpr std::string_view zones[] = {"Europe/Amsterdam",   "America/New_York",    "Asia/Kathmandu",
                                                 "Pacific/Kiritimati", "Australia/Lord_Howe", "UTC"};
    static constexpr std::string_view words[] = {"invoice", "ACME",     "**March**", "plants", "water", "deck",
                                                 "`build`", "contract", "Café",      "q3",     "call",  "tomorrow"};
    static constexpr std::string_view faults[] = {"fullDisk",     "readOnlyFolder", "noJournals",
                                                  "noPermission", "directory",      "folderGone"};

    bool chance(unsigned oneIn) { return random_() % oneIn == 0; }
    template <std::size_t n>
    std::string pick(const std::string_view (&list)[n]) {
        return std::string(list[random_() % n]);
    }
    std::string text() {
        std::string result = pick(words);
        for (auto more = random_() % 4; more > 0; --more)
            result += (chance(5) ? "  " : " ") + pick(words);
        return result;
    }
    Json texts(unsigned most) {
        Json list = Json::array();
        for (auto count = random_() % most; count > 0; --count)
            list.push_back(text());
        return list;
    }

    void morning() {
        std::string markdown = "### Today\n- card\n### Action Items\n";
        for (auto items = random_() % 4; items > 0; --items)
            markdown += (chance(4) ? "- [x] " : "- [ ] ") + text() + "\n";
        const double date = at_.sinceReference - (chance(10) ? 86400 : 0);
        step("todos.ingest", {{"id", "b.md"}, {"date", date}, {"title", "t"}, {"markdown", markdown}});
        step("todos.importCalendar", {{"titles", texts(3)}});
        step("flags.refresh", {{"texts", texts(5)}});
        step("flags.untouched", {{"texts", texts(5)}});
    }

    void userStep() {
        const auto count = driver_->todos().todos().size();
        const auto index = static_cast<std::int64_t>(random_() % (count + 2)) - 1;
        const Json null;
        const Json optionalKey = chance(2) ? Json(BriefingItem::key(text())) : null;
        struct Choice {
            const char* op;
            Json fields;
        };
        const Choice choices[] = {
            {"todos.add", {{"text", text()}}},
            {"todos.addLinked", {{"text", text()}, {"sourceKey", optionalKey}, {"prio", chance(2)}}},
            {"todos.toggle", {{"index", index}}},
            {"todos.togglePrio", {{"index", index}}},
            {"todos.rename", {{"index", index}, {"text", text()}}},
            {"todos.setReminder", {{"index", index}, {"date", at_.sinceReference + 0.1}, {"rule", "daily"}}},
            {"todos.setReminder", {{"index", index}, {"date", null}, {"rule", null}}},
            {"todos.setEventID", {{"index", index}, {"eventID", "event"}}},
            {"todos.move", {{"index", index}, {"to", static_cast<std::int64_t>(random_() % 9) - 2}}},
            {"todos.delete", {{"index", index}}},
            {"undo", Json::object()},
            {"flags.togglePrio", {{"markdown", text()}}},
            {"flags.togglePrio", {{"markdown", text()}}},
            {"flags.toggleCleared", {{"markdown", text()}}},
            {"flags.hide", {{"markdown", text()}}},
            {"flags.unhide", {{"markdown", text()}}},
            {"flags.unclear", {{"markdown", text()}}},
            {"flags.setPrio", {{"key", BriefingItem::key(text())}, {"text", text()}, {"on", chance(2)}}},
            {"flags.refresh", {{"texts", texts(6)}}},
            {"flags.reminders", {{"lines", texts(3)}}},
            {"wait", Json::object()}};
        const Choice& choice = choices[random_() % std::size(choices)];
        step(choice.op, choice.fields, static_cast<double>(random_() % 40000) / 1000);
    }

    // The process dies somewhere within the writes of one operation and is started again.
    void crash() {
        step("wait", {}, 3);
        const TodoState todosBefore = todoState(driver_->todos());
        const FlagState flagsBefore = driver_->flags().state();
        step("machine.crash", {{"steps", static_cast<std::int64_t>(1 + random_() % 40)}});
        isCrashing_ = true;
        userStep();
        isCrashing_ = false;
        const TodoState todosAfter = todoState(driver_->todos());
        const FlagState flagsAfter = driver_->flags().state();
        step("machine.start", {});
        const TodoState todos = todoState(driver_->todos());
        require(todos == todosBefore || todos == todosAfter,
                "a crash leaves the todos as before or after the operation");
        const FlagState& flags = driver_->flags().state();
        require(flags == prunedByHand(flagsBefore, at_) || flags == prunedByHand(flagsAfter, at_),
                "a crash leaves the flags as before or after the operation");
        step("wait", {}, 3);
    }

    void fault() {
        fault_ = pick(faults);
        step("machine.fault", {{"kind", fault_}});
        for (auto steps = random_() % 6; steps > 0; --steps)
            userStep();
        // A process that starts where it can read nothing has nothing, and what is only in memory cannot outlive one.
        if ((fault_ == "readOnlyFolder" || fault_ == "noJournals") && chance(2)) {
            const TodoState before = todoState(driver_->todos());
            const FlagState flagsBefore = driver_->flags().state();
            step("machine.start", {});
            require(todoState(driver_->todos()) == before, "what could not be written is there after the next start");
            require(driver_->flags().state() == prunedByHand(flagsBefore, at_),
                    "flags that could not be written are there after the next start");
        }
        if (fault_ == "folderGone") step("wait", {}, 2.5);
        fault_.clear();
        step("machine.fault", {{"kind", "none"}});
        step("wait", {}, 4.5);
        require(!driver_->todos().hasUnwritten() && !driver_->flags().hasUnwritten(),
                "what could not be written is written as soon as it can be");
        require(driver_->todos().todos().empty() || disk_->content("/briefings/todos.json"),
                "a file that went with its folder comes back with it");
    }

    void device() {
        step("wait", {}, 5);
        const auto before = driver_->todos().todos().size();
        const std::string added = text() + " " + std::to_string(log_.size());
        const bool isThere = disk_->content("/briefings/todos.json").has_value();
        step("device.add", {{"text", added}});
        step("device.clear", {{"markdown", text()}});
        foreignSeenBy_ = at_ + 2.5;
        if (chance(2)) step("todos.add", {{"text", text()}}, 1);
        step("wait", {}, 5);
        if (!isThere) return;
        const auto& todos = driver_->todos().todos();
        const bool found =
            std::any_of(todos.begin(), todos.end(), [&](const Todo& todo) { return todo.text == added; });
        require(found || todos.size() < before, "what another device added is taken over");
    }

    void step(const char* op, Json fields, double after = 0) {
        at_ = at_ + after;
        if (!fields.is_object()) fields = Json::object();
        fields["at"] = at_.sinceReference;
        fields["op"] = op;
        log_.push_back(fields.dump());
        // The timers on the way first, so that `before` is what the operation finds.
        if (fields["op"] != "machine.wake") driver_->run({{"at", fields["at"]}, {"op", "wait"}});
        const TodoState before = todoState(driver_->todos());
        driver_->run(fields);
        if (disk_->isDead() || isCrashing_) return;
        check(op, before, fields);
    }

    void check(const std::string& op, const TodoState& before, const Json& fields) {
        const auto& todos = driver_->todos().todos();
        const auto group = [](const Todo& todo) { return todo.done ? 2 : todo.isPrio() ? 0 : 1; };
        require(std::is_sorted(todos.begin(), todos.end(),
                               [&](const Todo& a, const Todo& b) { return group(a) < group(b); }),
                "open priorities, then open, then done");
        const auto& dismissed = driver_->todos().dismissed();
        require(dismissed.size() <= TodoStore::maximumDismissed &&
                    std::set<std::string>(dismissed.begin(), dismissed.end()).size() == dismissed.size(),
                "dismissals are few and distinct");
        checkNothingLost(op, before, fields);
        const FlagState& flags = driver_->flags().state();
        if (op.starts_with("flags.") && op != "flags.refresh" && op != "flags.untouched" && op != "flags.reminders") {
            require(flags == prunedByHand(flags, at_), "no flag outlives its time");
        }
        if (fault_.empty() && !op.starts_with("device.") && !op.starts_with("machine.")) checkFiles();
    }

    void checkNothingLost(const std::string& op, const TodoState& before, const Json& fields) {
        if (op == "machine.start") return;  // judged by those who ask for it
        std::set<Uuid> expected = ids(before.todos);
        if (op == "todos.delete") {
            const auto index = fields["index"].get<std::int64_t>();
            if (index >= 0 && index < static_cast<std::int64_t>(before.todos.size())) {
                expected.erase(before.todos[static_cast<std::size_t>(index)].id);
            }
        }
        if (op == "todos.ingest" && driver_->todos().lastImportDay() != before.lastImportDay) {
            for (const Todo& todo : before.todos) {
                if (todo.done) expected.erase(todo.id);
            }
        }
        const std::set<Uuid> after = ids(driver_->todos().todos());
        require(std::includes(after.begin(), after.end(), expected.begin(), expected.end()), "no todo is lost");
        if (op == "restart" && fault_.empty())
            require(todoState(driver_->todos()) == before, "a restart changes nothing");
    }

    void checkFiles() {
        if (at_ < foreignSeenBy_ || driver_->todos().hasUnwritten() || driver_->flags().hasUnwritten()) return;
        if (const auto file = disk_->content(driver_->todos().fileURL())) {
            const auto state = decodeTodos(*file);
            require(state && *state == todoState(driver_->todos()), "the todo file holds what memory holds");
        }
        const FlagState flags = prunedByHand(driver_->flags().state(), at_);
        if (const auto file = disk_->content(driver_->flags().fileURL())) {
            const auto state = decodeFlags(*file);
            require(state && prunedByHand(*state, at_) == flags, "the flag file holds what memory holds");
        }
        if (const auto file = disk_->content(driver_->flags().feedbackURL())) {
            const auto feedback = Json::parse(*file, nullptr, false);
            std::multiset<std::string> cleared;
            for (const auto& [key, text] : driver_->flags().state().cleared)
                cleared.insert(text);
            require(feedback.is_object() && feedback["cleared"] == Json(cleared) &&
                        feedback["prio"].size() == driver_->flags().state().prio.size(),
                    "the feedback tells what memory holds");
        }
    }

    std::mt19937_64 random_;
    Instant at_{817000000};
    std::unique_ptr<SimulatedFileSystem> disk_;
    std::unique_ptr<StoreDriver> driver_;
    std::string fault_;
    // When what another device wrote has been taken over at the latest.
    Instant foreignSeenBy_ = Instant::distantPast();
    bool isCrashing_ = false;
    std::vector<std::string> log_;
};

}  // namespace
}  // namespace sunpane::testing

/// Usage: sunpane_store_simulation [--seed FIRST] [--seeds COUNT] [--days DAYS]
int main(int argc, char** argv) {
    using sunpane::testing::Simulation;
    const sunpane::testing::SeededRuns runs(10, 30, "--days", argc, argv);
    // The whole log, because it replays the run: sunpane_replay < LOG.
    constexpr std::size_t toldLines = SIZE_MAX;
    if (!runs.run<Simulation>(
            toldLines, [](Simulation& each) { each.day(); }, [](const Simulation&) {}))
        return 1;
    std::cout << runs.seeds << " seeds of " << runs.rounds << " days: every rule held\n";
    return 0;
}
