#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/ManualRunLoop.h"
#include "core/stores/ItemFlagStore.h"
#include "core/stores/TodoStore.h"
#include "linux/system/LocalCloudFiles.h"
#include "linux/system/PosixFileSystem.h"
#include "linux/system/SystemClock.h"
#include "support/TemporaryFolder.h"

// Prints what the stores cost next to a peer measured in the same run: medians of interleaved repetitions.
namespace sunpane {
namespace {

// Processor time (s), so that other programs' turns do not count; nothing that is measured waits for a disk.
double processorTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    constexpr double nanosecond = 1e-9;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * nanosecond;
}

double seconds(const std::function<void()>& work) {
    const double start = processorTime();
    work();
    return processorTime() - start;
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

/// Medians of several works, taken in turns so that a slow moment of the machine meets all alike.
std::vector<double> medians(int repetitions, const std::vector<std::function<double()>>& works) {
    std::vector<std::vector<double>> times(works.size());
    for (int i = 0; i < repetitions; ++i) {
        for (std::size_t w = 0; w < works.size(); ++w)
            times[w].push_back(works[w]());
    }
    std::vector<double> result;
    for (auto& each : times)
        result.push_back(median(each));
    return result;
}

/// Keeps what is handed over until it is asked to run it, so that only the handing over is measured.
class HeldTasks : public WorkQueue {
public:
    void post(Task task) override { tasks_.push_back(std::move(task)); }
    Subscription after(Seconds, Task) override { return {}; }
    Subscription every(Seconds, Task) override { return {}; }
    const std::string& label() const override { return label_; }
    void drain() override {
        while (!tasks_.empty()) {
            std::vector<Task> tasks;
            tasks.swap(tasks_);
            for (const Task& task : tasks)
                task();
        }
    }

private:
    std::string label_ = "held";
    std::vector<Task> tasks_;
};

class HeldQueues : public WorkQueueFactory {
public:
    std::unique_ptr<WorkQueue> makeQueue(std::string) override { return std::make_unique<HeldTasks>(); }
};

struct Machine {
    testing::TemporaryFolder folder;
    testing::TemporaryFolder state;
    SystemClock clock;
    PosixFileSystem disk;
    LocalCloudFiles cloud;
    HeldQueues queues;
    ManualRunLoop loop;
    StoreFiles files{{disk, cloud, clock, loop, queues, sleepFor}, state.path()};
};

TodoState manyTodos(std::size_t count) {
    std::mt19937 random(1);
    TodoState state;
    for (std::size_t i = 0; i < count; ++i) {
        Todo todo = Todo::make("Reply to the landlord about item " + std::to_string(i),
                               Instant{816480000 + static_cast<double>(random()) / 4096});
        todo.source = todo_source::brief;
        if (i % 4 == 0) todo.tag = "WRK";
        if (i % 10 == 0) todo.sourceItemKey = "reply-to-the-landlord-about-item-" + std::to_string(i);
        todo.done = i >= count / 2;
        if (todo.done) todo.doneAt = todo.createdAt + 3600.5;
        state.todos.push_back(std::move(todo));
    }
    state.lastImportDay = "2026-11-22";
    return state;
}

void measureToggle() {
    constexpr std::size_t count = 10000;
    Machine machine;
    const TodoState state = manyTodos(count);
    machine.folder.write("todos.json", encodeTodos(state));
    TodoStore store(machine.files, machine.folder.path());
    std::size_t next = 0;
    const auto toggle = [&] {
        const Uuid id = store.todos()[(next += 7919) % count].id;
        const double time = seconds([&] { store.toggle(id); });
        machine.files.drain();
        machine.loop.runPosted();
        return time;
    };
    const TodoState copy{store.todos(), store.lastImportDay(), store.dismissed()};
    const auto encodeAlone = [&] {
        std::string bytes;
        return seconds([&] { bytes = encodeTodos(copy); });
    };
    const auto tree = nlohmann::ordered_json::parse(encodeTodos(state));
    const auto dump = [&] {
        std::string bytes;
        return seconds([&] { bytes = tree.dump(); });
    };
    const auto times = medians(101, {toggle, encodeAlone, dump});
    std::printf(
        "toggle and hand over the save, %zu todos: %.3f ms; encoding the file alone: %.3f ms (ratio %.2f); "
        "JSON library's writer alone: %.3f ms\n",
        count, times[0] * 1e3, times[1] * 1e3, times[0] / times[1], times[2] * 1e3);
}

void measureLoad() {
    const std::string file = encodeTodos(manyTodos(10000));
    const auto ours = [&] {
        std::optional<TodoState> state;
        return seconds([&] { state = decodeTodos(file); });
    };
    const auto tree = [&] {
        nlohmann::json parsed;
        return seconds([&] { parsed = nlohmann::json::parse(file); });
    };
    const auto times = medians(51, {ours, tree});
    std::printf("decoding 10000 todos (%zu KB): %.2f ms; JSON library's tree: %.2f ms (ratio %.2f)\n",
                file.size() / 1024, times[0] * 1e3, times[1] * 1e3, times[0] / times[1]);
}

void measureMemory() {
    for (const std::size_t count : {1000U, 10000U, 100000U}) {
        Machine machine;
        {
            const std::string file = encodeTodos(manyTodos(count));
            machine.folder.write("todos.json", file);
        }
        const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
        TodoStore store(machine.files, machine.folder.path());
        store.toggle(store.todos()[0].id);
        machine.files.drain();
        machine.loop.runPosted();
        const std::size_t after = mallinfo2().uordblks + mallinfo2().hblkhd;
        std::printf("memory of a store with %zu todos: %.0f bytes each\n", count,
                    static_cast<double>(after - before) / static_cast<double>(count));
    }
}

FlagState manyFlags(std::size_t count, std::mt19937& random) {
    FlagState state;
    const auto text = [&](std::size_t number) {
        std::string made;
        for (int word = 0; word < 6; ++word)
            made += "word" + std::to_string(random() % (count * 8 + 50)) + " ";
        return made + "item" + std::to_string(number);
    };
    for (std::size_t i = 0; i < count; ++i) {
        const std::string prio = "prio-" + std::to_string(i);
        const std::string cleared = "cleared-" + std::to_string(i);
        state.prio[prio] = text(i);
        state.cleared[cleared] = text(i + count);
        state.dates[prio] = Instant{816480000};
        // The worst case: every dismissal is later than every priority, so all are looked at.
        state.dates[cleared] = Instant{816480001};
    }
    return state;
}

void measurePrune() {
    std::mt19937 random(2);
    for (const std::size_t count : {10U, 20U, 100U, 1000U, 10000U}) {
        const FlagState state = manyFlags(count, random);
        TopicIndex topics;
        std::size_t found = dismissedPriorities(state, topics).size();
        const auto indexed = [&] { return seconds([&] { found = dismissedPriorities(state, topics).size(); }); };
        const double time = medians(count > 1000 ? 5 : 51, {indexed})[0];
        std::printf("comparing %zu priorities with %zu dismissals: %.1f us, %.3f us each (%zu found)", count, count,
                    time * 1e6, time * 1e6 / static_cast<double>(count), found);
        if (count <= 1000) {
            std::vector<std::set<std::string>> prio;
            std::vector<std::set<std::string>> cleared;
            for (const auto& [key, text] : state.prio)
                prio.push_back(significantWords(text));
            for (const auto& [key, text] : state.cleared)
                cleared.push_back(significantWords(text));
            std::size_t pairs = 0;
            const double naive = seconds([&] {
                for (const auto& a : prio) {
                    for (const auto& b : cleared)
                        pairs += sameTopic(a, b) ? 1 : 0;
                }
            });
            std::printf("; each with each: %.1f us", naive * 1e6);
        }
        std::printf("\n");
    }
}

void measureFlagging() {
    Machine machine;
    std::mt19937 random(3);
    FlagState state = manyFlags(20, random);
    const Instant now = machine.clock.now();
    for (auto& [key, date] : state.dates)
        date = key.starts_with("prio") ? now : now - 60;
    machine.folder.write("itemflags.json", encodeFlags(state));
    ItemFlagStore store(machine.files, machine.folder.path());
    const BriefingItem item("**Sign the NDA** before noon");
    const auto flag = [&] {
        const double time = seconds([&] { store.togglePrio(item); });
        machine.files.drain();
        machine.loop.runPosted();
        return time;
    };
    std::printf("one flag with both files handed over, 20 of each kept: %.1f us\n", medians(101, {flag})[0] * 1e6);
}

}  // namespace
}  // namespace sunpane

int main() {
    sunpane::measureToggle();
    sunpane::measureLoad();
    sunpane::measureMemory();
    sunpane::measurePrune();
    sunpane::measureFlagging();
    return 0;
}
