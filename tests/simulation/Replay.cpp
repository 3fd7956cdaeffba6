#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "StoreDriver.h"
#include "linux/system/PosixFileSystem.h"
#include "support/TemporaryFolder.h"

namespace sunpane::testing {
namespace {

constexpr const char* help =
    R"(Usage: sunpane_replay [--folder FOLDER] < operations

Drives the todo store and the flag store under a simulated clock in an empty folder, or in FOLDER. Each line of
standard input is one JSON object with "at" (seconds since 2001-01-01 00:00:00 UTC, never decreasing; the clock moves
there first) and "op":

  todos.add {text}                              todos.ingest {id,date,title,markdown}
  todos.addLinked {text,sourceKey|null,prio}    todos.importCalendar {titles}
  todos.toggle {index}                          flags.togglePrio {markdown}
  todos.togglePrio {index}                      flags.toggleCleared {markdown}
  todos.rename {index,text}                     flags.hide {markdown}
  todos.setReminder {index,date|null,rule|null} flags.unhide {markdown}
  todos.setEventID {index,eventID|null}         flags.unclear {markdown}
  todos.move {index,to}                         flags.setPrio {key,text,on}
  todos.delete {index}                          flags.refresh {texts}
  undo {}                                       flags.untouched {texts}
  external {file,content}                       flags.reminders {lines}
  restart {}  wait {}                           dump {}

In logs of the simulation also: another device's read and write, device.add {text} and device.clear {markdown}; and,
without --folder, machine.zone {zone}, machine.fault {kind}, machine.crash {steps}, machine.start {}, machine.wake {}.

An index out of range stands for a todo that is not in the list. Time zone and locale are taken from TZ and LANG.
A line that is none of this: one line on standard error, exit code 2.
)";

/// Real files whose modification times follow the simulated clock, later with every write.
class ClockedFileSystem : public PosixFileSystem {
public:
    explicit ClockedFileSystem(const Clock& clock) : clock_(clock) {}

    bool writeInPlace(const std::string& path, std::string_view bytes) override {
        return PosixFileSystem::writeInPlace(path, bytes) && setTime(path);
    }
    bool replaceAtomically(const std::string& path, std::string_view bytes) override {
        return PosixFileSystem::replaceAtomically(path, bytes) && setTime(path);
    }
    void writeExternally(const std::string& path, const std::string& content) {
        const auto before = stamp(path);
        if (before) last_ = std::max(last_, before->modified.unixNanoseconds);
        writeInPlace(path, content);
    }

private:
    bool setTime(const std::string& path) {
        constexpr std::int64_t perSecond = 1000000000;
        constexpr std::int64_t tick = 1000;
        last_ = std::max(last_ + tick, static_cast<std::int64_t>(clock_.now().unixTime() * perSecond));
        const struct timespec times[2] = {{0, UTIME_OMIT}, {last_ / perSecond, last_ % perSecond}};
        return utimensat(AT_FDCWD, path.c_str(), times, 0) == 0;
    }

    const Clock& clock_;
    std::int64_t last_ = 0;
};

std::string environmentOr(const char* name, const char* fallback) {
    const char* value = std::getenv(name);
    return value == nullptr || *value == '\0' ? fallback : value;
}

std::string localeFromEnvironment() {
    std::string locale = environmentOr("LANG", "C");
    locale = locale.substr(0, locale.find_first_of(".@"));
    return locale == "C" || locale == "POSIX" ? "en_US_POSIX" : locale;
}

/// What a run keeps: the disk and the driver on it, made at the first line, which says where the clock starts.
struct Run {
    std::optional<std::string> folder;
    TemporaryFolder journals;
    std::shared_ptr<SimulatedFileSystem> memory;
    std::shared_ptr<ClockedFileSystem> real;
    std::unique_ptr<StoreDriver> driver;

    void start(Instant at) {
        const StoreDriver::Place place{folder.value_or("/briefings"), folder ? journals.path() : "/state",
                                       environmentOr("TZ", "UTC"), localeFromEnvironment()};
        driver = std::make_unique<StoreDriver>(at, place, [this](const Clock& clock) -> DriverDisk {
            if (folder) {
                real = std::make_shared<ClockedFileSystem>(clock);
                return {real.get(), nullptr,
                        [this](const auto& path, const auto& text) { real->writeExternally(path, text); }};
            }
            memory = std::make_shared<SimulatedFileSystem>(clock);
            return {memory.get(), memory.get(),
                    [this](const auto& path, const auto& text) { memory->writeExternally(path, text); }};
        });
    }
};

int replay(Run& run) {
    std::size_t number = 0;
    for (std::string text; std::getline(std::cin, text);) {
        ++number;
        try {
            const auto line = nlohmann::json::parse(text, nullptr, false);
            if (line.is_discarded()) throw BadLine("it is not JSON");
            if (!run.driver) {
                if (!line.is_object() || !line.contains("at") || !line["at"].is_number()) {
                    throw BadLine("\"at\" is missing");
                }
                run.start(Instant{line["at"].get<double>()});
            }
            if (const auto printed = run.driver->run(line)) std::cout << *printed << '\n' << std::flush;
        } catch (const BadLine& problem) {
            std::cout.flush();
            std::cerr << "sunpane_replay: line " << number << ": " << problem.what() << '\n';
            return 2;
        }
    }
    return 0;
}

}  // namespace
}  // namespace sunpane::testing

int main(int argc, char** argv) {
    sunpane::testing::Run run;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--help") {
            std::cout << sunpane::testing::help;
            return 0;
        }
        if (argument != "--folder" || i + 1 >= argc) {
            std::cerr << "sunpane_replay: unknown or incomplete option; see --help\n";
            return 2;
        }
        run.folder = std::filesystem::absolute(argv[++i]).string();
    }
    return sunpane::testing::replay(run);
}
