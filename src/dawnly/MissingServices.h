#pragma once

#include "platform/ArtworkLoader.h"
#include "platform/AudioProcesses.h"
#include "platform/CalendarStore.h"
#include "platform/MediaCommands.h"
#include "platform/NotificationService.h"
#include "platform/RunningApplications.h"
#include "platform/ScriptRunner.h"

namespace sunpane {

/// Stands in where the program has no way to the user's calendars: they cannot be read, and the user is never asked.
class NoCalendars : public CalendarStore {
public:
    CalendarAccess access() const override { return CalendarAccess::restricted; }
    void requestFullAccess(std::function<void(bool)> answer) override { answer(false); }
    bool loaded() const override { return false; }
    std::vector<CalendarEvent> events(Instant /*from*/, Instant /*to*/) const override { return {}; }
    std::vector<CalendarInfo> calendars() const override { return {}; }
    void add(const NewEvent& /*event*/, std::function<void(std::optional<std::string>)> done) override {
        done(std::nullopt);
    }
    Subscription observeChanges(std::function<void()> /*handler*/) override { return {}; }
};

/// Stands in where nothing shows notifications.
class NoNotifications : public NotificationService {
public:
    bool available() const override { return false; }
    std::string instance() const override { return {}; }
    void show(const std::string& /*title*/, const std::string& /*body*/,
              std::function<void(std::uint32_t)> shown) override {
        shown(0);
    }
    void setClickHandler(std::function<void(std::uint32_t)> /*handler*/) override {}
    void setAvailabilityHandler(std::function<void()> /*handler*/) override {}
};

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
