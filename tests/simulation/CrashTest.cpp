#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "base/ManualRunLoop.h"
#include "core/stores/ItemFlagStore.h"
#include "core/stores/Journal.h"
#include "core/stores/TodoStore.h"
#include "linux/system/LocalCloudFiles.h"
#include "linux/system/PosixFileSystem.h"
#include "linux/system/SystemClock.h"
#include "linux/system/ThreadWorkQueue.h"
#include "support/TemporaryFolder.h"

namespace sunpane::testing {
namespace {

using Steady = std::chrono::steady_clock;

/// How many todos, and how many flags, the working process keeps; older ones it removes or overwrites.
constexpr std::int64_t keptTodos = 50;
constexpr std::int64_t keptFlags = 40;
/// What the user did longer ago than this before a kill must be there afterwards.
constexpr std::chrono::milliseconds acknowledgedAfter{100};

/// Both stores on real files, with real threads.
struct RealStores {
    SystemClock clock;
    PosixFileSystem disk;
    LocalCloudFiles cloud;
    ThreadWorkQueueFactory queues;
    ManualRunLoop loop;
    StoreFiles files;
    TodoStore todos;
    ItemFlagStore flags;

    RealStores(const std::string& folder, const std::string& stateFolder)
        : files({disk, cloud, clock, loop, queues, sleepFor}, stateFolder),
          todos(files, folder),
          flags(files, folder) {}
};

std::string todoText(std::int64_t number) {
    return "number " + std::to_string(number) + " \"écrit\"";
}
std::string flagText(std::int64_t number) {
    return "topic" + std::to_string(number) + "x";
}
std::string flagKey(std::int64_t number) {
    return "key-" + std::to_string(number % keptFlags);
}

std::int64_t numberIn(const std::string& text, std::size_t start) {
    return std::strtoll(text.c_str() + start, nullptr, 10);
}

/// The number of the last operation that the stores show, or an explanation of why they show no single one.
std::int64_t lastTodo(const TodoStore& store, std::string& problem) {
    const auto& todos = store.todos();
    const std::int64_t last = todos.empty() ? 0 : numberIn(todos.back().text, 7);
    // An addition and the removals of what it pushes out are operations of their own.
    const auto size = static_cast<std::int64_t>(todos.size());
    if (size < std::min(last, keptTodos) || size > keptTodos + 2) problem = "a number of todos that never was";
    for (std::int64_t i = 0; i < size; ++i) {
        if (todos[static_cast<std::size_t>(i)].text != todoText(last - size + 1 + i)) problem = "a todo is missing";
    }
    return last;
}

std::int64_t lastFlag(const ItemFlagStore& store, std::string& problem) {
    std::int64_t last = 0;
    for (const auto& [key, text] : store.state().prio)
        last = std::max(last, numberIn(text, 5));
    for (std::int64_t number = std::max<std::int64_t>(1, last - keptFlags + 1); number <= last; ++number) {
        const auto found = store.state().prio.find(flagKey(number));
        if (found == store.state().prio.end() || found->second != flagText(number)) problem = "a flag is missing";
    }
    return last;
}

/// What the working process tells after each operation.
struct Note {
    std::int64_t todo = 0;
    std::int64_t flag = 0;
    Steady::rep at = 0;
};

/// Works on the stores without end, telling the number and the moment of every operation.
[[noreturn]] void work(const std::string& folder, const std::string& stateFolder, int notes) {
    RealStores stores(folder, stateFolder);
    std::mt19937 random(static_cast<unsigned>(getpid()));
    std::string ignored;
    Note note{lastTodo(stores.todos, ignored), lastFlag(stores.flags, ignored), 0};
    for (;;) {
        stores.todos.add(todoText(++note.todo));
        while (static_cast<std::int64_t>(stores.todos.todos().size()) > keptTodos) {
            stores.todos.remove(stores.todos.todos().front().id);
        }
        ++note.flag;
        stores.flags.setPrio(flagKey(note.flag), flagText(note.flag), true);
        // Both changes are made now.
        note.at = Steady::now().time_since_epoch().count();
        if (write(notes, &note, sizeof note) != sizeof note) std::_Exit(1);
        stores.loop.runPosted();
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 4000));
    }
}

/// Keeps every other program from writing a store file while it lives, as one would that waits for its own disk.
class HeldLocks {
public:
    HeldLocks(const std::string& folder, const std::string& stateFolder) {
        for (const char* name : {TodoStore::fileName, ItemFlagStore::fileName}) {
            const std::string file = disk_.canonicalPath(folder + "/" + name);
            std::unique_ptr<FileLock> lock;
            for (int attempts = 0; !lock && attempts < 200; ++attempts) {
                lock = disk_.tryLock(stateFolder + "/" + journalName(file) + ".lock");
                if (!lock) std::this_thread::sleep_for(std::chrono::microseconds(500));
            }
            locks_.push_back(std::move(lock));
        }
    }

private:
    PosixFileSystem disk_;
    std::vector<std::unique_ptr<FileLock>> locks_;
};

/// Lets a process work for a while, kills it, and returns what it had told that counts. With `isHindered`, all its
/// files are locked by another program for the second half of that time.
Note killWhileWorking(const std::string& folder, const std::string& stateFolder, std::chrono::microseconds time,
                      bool isHindered) {
    std::array<int, 2> pipeEnds{};
    if (pipe(pipeEnds.data()) != 0) throw std::runtime_error("no pipe");
    const pid_t child = fork();
    if (child == 0) {
        close(pipeEnds[0]);
        work(folder, stateFolder, pipeEnds[1]);
    }
    close(pipeEnds[1]);
    std::this_thread::sleep_for(time / 2);
    const auto locks = isHindered ? std::make_unique<HeldLocks>(folder, stateFolder) : nullptr;
    std::this_thread::sleep_for(time / 2);
    const auto killedAt = Steady::now();
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    if (!WIFSIGNALED(status) || WTERMSIG(status) != SIGKILL) throw std::runtime_error("the process ended by itself");
    Note acknowledged;
    for (Note note; read(pipeEnds[0], &note, sizeof note) == sizeof note;) {
        if (Steady::time_point(Steady::duration(note.at)) + acknowledgedAfter <= killedAt) acknowledged = note;
    }
    close(pipeEnds[0]);
    return acknowledged;
}

bool decodes(const std::string& path, const std::function<bool(std::string_view)>& decode) {
    const FileReading reading = PosixFileSystem().read(path, StoreFile::maximumBytes);
    return reading.status == FileReading::Status::absent ||
           (reading.status == FileReading::Status::read && decode(reading.bytes));
}

/// What is wrong after the next start; empty when nothing is.
std::string verify(const std::string& folder, const std::string& stateFolder, const Note& acknowledged) {
    std::string problem;
    {
        RealStores stores(folder, stateFolder);
        stores.files.drain();
        const auto todo = lastTodo(stores.todos, problem);
        const auto flag = lastFlag(stores.flags, problem);
        if (todo < acknowledged.todo) problem = "todo " + std::to_string(acknowledged.todo) + " is lost";
        if (flag < acknowledged.flag) problem = "flag " + std::to_string(acknowledged.flag) + " is lost";
    }
    const auto isJson = [](std::string_view text) { return nlohmann::json::accept(text); };
    if (!decodes(folder + "/todos.json", [](std::string_view t) { return decodeTodos(t).has_value(); })) {
        problem = "todos.json does not decode";
    }
    if (!decodes(folder + "/itemflags.json", [](std::string_view t) { return decodeFlags(t).has_value(); })) {
        problem = "itemflags.json does not decode";
    }
    if (!decodes(folder + "/feedback.json", isJson)) problem = "feedback.json does not decode";
    return problem;
}

}  // namespace
}  // namespace sunpane::testing

/// Usage: sunpane_crash_test [KILLS]. Kills a working process again and again; exit code 1 when anything was lost.
int main(int argc, char** argv) {
    using namespace sunpane::testing;
    const int kills = argc > 1 ? std::atoi(argv[1]) : 60;
    const TemporaryFolder folder;
    const TemporaryFolder state;
    std::mt19937 random(std::random_device{}());
    Note last;
    std::int64_t counted = 0;
    for (int i = 1; i <= kills; ++i) {
        const bool isHindered = i % 4 == 0;
        const std::chrono::microseconds time(random() % (isHindered ? 500000 : 250000));
        const Note acknowledged = killWhileWorking(folder.path(), state.path(), time, isHindered);
        if (acknowledged.todo > 0) {
            last = acknowledged;
            ++counted;
        }
        const std::string problem = verify(folder.path(), state.path(), last);
        if (!problem.empty()) {
            std::cerr << "kill " << i << " after " << time.count() << " us: " << problem << '\n';
            return 1;
        }
    }
    std::cout << kills << " kills, " << counted << " of them with acknowledged changes (" << last.todo
              << " todos in all): nothing lost\n";
    return 0;
}
