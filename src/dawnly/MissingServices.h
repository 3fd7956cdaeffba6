#pragma once

#include "platform/ArtworkLoader.h"
#include "platform/AudioProcesses.h"
#include "platform/MediaCommands.h"
#include "platform/RunningApplications.h"
#include "platform/ScriptRunner.h"

namespace sunpane {

/// Stand in where the program has no way to the user's players: none runs, and none is asked.
class NoApplications : public RunningApplications {
public:
    bool loaded() const override { return true; }
    bool isRunning(std::string_view /*bundleIdentifier*/) const override { return false; }
    void open(std::string_view /*bundleIdentifier*/) override {}
};

class NoScripts : public ScriptRunner {
public:
    std::optional<ScriptValue> run(std::string_view /*source*/) override { return std::nullopt; }
};

class NoAudio : public AudioProcesses {
public:
    bool loaded() const override { return true; }
    std::optional<std::vector<AudioProcess>> list() const override { return std::nullopt; }
};

class NoMediaCommands : public MediaCommands {
public:
    void togglePlayPause() override {}
};

class NoArtwork : public ArtworkLoader {
public:
    void load(const std::string& /*url*/, Handler /*done*/) override {}
};

}  // namespace sunpane
