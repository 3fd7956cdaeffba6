#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "linux/players/Deadline.h"

namespace sunpane {

/// A program's sound on its way to an output.
struct SoundStream {
    /// The name of the program's file, and what the program calls itself. Whatever it says; bounded.
    std::string program;
    std::string application;
    bool playing = false;
};

/// The user's sound server. One thread at a time. Keeps its connection, on which nothing comes unless it is asked.
class SoundServer {
public:
    virtual ~SoundServer() = default;

    /// Whether the output that is used by default is muted. Nothing when there is no sound server or output, and when
    /// it does not answer until `deadline`.
    virtual std::optional<bool> muted(Deadline deadline) = 0;
    /// False when it could not be done until then.
    virtual bool setMuted(bool muted, Deadline deadline) = 0;
    /// Nothing as with `muted`.
    virtual std::optional<std::vector<SoundStream>> streams(Deadline deadline) = 0;
};

/// The name under which the module for sound servers exports its maker.
constexpr const char* soundModuleEntry = "sunpaneMakeSoundServer";
using SoundModuleEntry = SoundServer* (*)();

/// A sound server whose client library, in a module of ours, is loaded when it is asked for first: a panel that is
/// never opened has no use for it. Used like the server itself.
class SoundAccess {
public:
    /// Null where the module or the library is missing.
    SoundServer* server();

private:
    bool tried_ = false;
    std::unique_ptr<SoundServer> server_;
};

}  // namespace sunpane
