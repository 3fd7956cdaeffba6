#pragma once

#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>

#include "app/NotchUndo.h"
#include "core/stores/ItemFlagStore.h"
#include "core/stores/StoreFiles.h"
#include "core/stores/TodoStore.h"
#include "support/SimulatedFileSystem.h"
#include "support/SimulatedPlatform.h"

namespace sunpane::testing {

/// A line that is not an operation.
class BadLine : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A clock that shows an operation exactly the moment that its line names, free of rounding.
class OperationClock : public SimulatedClock {
public:
    using SimulatedClock::SimulatedClock;
    Instant now() const override { return pinned.value_or(SimulatedClock::now()); }
    std::optional<Instant> pinned;
};

/// The disk that the driver's stores work on, as far as the driver itself touches it.
struct DriverDisk {
    FileSystem* files = nullptr;
    /// The same disk when it is one in memory; the `machine` operations need that.
    SimulatedFileSystem* memory = nullptr;
    std::function<void(const std::string& path, const std::string& content)> writeExternally;
};

/// Drives both stores through operations given as JSON objects, one after the other, under a simulated clock. The
/// operations and their fields are those of sunpane_replay (see its help).
class StoreDriver {
public:
    using MakeDisk = std::function<DriverDisk(const Clock& clock)>;

    struct Place {
        std::string folder;
        std::string stateFolder;
        std::string zone;
        std::string locale;
    };

    /// The clock starts at `start`; `makeDisk` is called once.
    StoreDriver(Instant start, Place place, const MakeDisk& makeDisk);
    ~StoreDriver();

    /// Moves the clock to the line's moment, runs the operation and everything that it makes due. Returns what the
    /// operation prints, if it prints. Throws BadLine for a line that makes no sense.
    std::optional<std::string> run(const nlohmann::json& line);

    OperationClock& clock() { return clock_; }
    TodoStore& todos() { return *todos_; }
    ItemFlagStore& flags() { return *flags_; }
    Instant now() const { return clock_.now(); }

    /// Ends the process of the stores, with no chance to write when the disk is dead, and starts a new one.
    void restart();

private:
    struct Operations;

    void start();
    void dump();
    void deviceAdd(const nlohmann::json& line);
    void deviceClear(const nlohmann::json& line);
    void machineFault(const nlohmann::json& line);
    void machineStart();
    SimulatedFileSystem& memory() const;
    std::optional<std::string> content(const std::string& path) const;

    Uuid idAt(const nlohmann::json& line) const;
    std::string fileObject(const std::string& path) const;

    SimulatedTime time_;
    OperationClock clock_{time_};
    SimulatedRunLoop runLoop_{time_};
    SimulatedWorkQueueFactory queues_{time_};
    SimulatedCloudFiles cloud_;
    Place place_;
    DriverDisk disk_;
    NotchUndo undo_;
    std::unique_ptr<StoreFiles> files_;
    std::unique_ptr<TodoStore> todos_;
    std::unique_ptr<ItemFlagStore> flags_;
    std::optional<std::string> printed_;
};

}  // namespace sunpane::testing
