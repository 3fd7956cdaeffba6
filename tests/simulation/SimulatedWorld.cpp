#include <cmath>

#include "ProgramSimulation.h"
#include "base/Dates.h"
#include "nowplaying/PlayerScripts.h"

namespace sunpane::testing {

// The agent.

std::string Simulation::text() {
    static constexpr std::string_view words[] = {"invoice", "**ACME**", "March", "plants", "water",    "deck",
                                                 "`build`", "contract", "Café",  "call",   "tomorrow", "🔥 hot"};
    std::string result(pick(words));
    for (auto more = below(4); more > 0; --more)
        result += " " + std::string(pick(words));
    return result + " " + std::to_string(below(200));
}

std::string Simulation::briefing() {
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

std::string Simulation::agent() {
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

std::string Simulation::calendar() {
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

Instant Simulation::soon() {
    return {std::floor((now() + static_cast<double>(below(86400))).sinceReference)};
}

std::string Simulation::players() {
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

std::string Simulation::desktop() {
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

std::string Simulation::changeScreens() {
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

std::string Simulation::changeFolder() {
    isAway_ = !isAway_;
    world_.defaults.set(FolderBriefingProvider::folderDefaultsKey, (isAway_ ? world_.other : world_.home).path());
    program_->notifications.post(notification::briefingsFolderChanged);
    return isAway_ ? "another folder" : "the first folder";
}

// The machine.

std::string Simulation::machine() {
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

std::string Simulation::sleep(Seconds span) {
    world_.platform.time.jumpWallClock(now() + span);
    world_.workspace.wake();
    return "sleep of " + std::to_string(span);
}

std::string Simulation::beginFault() {
    if (chance(2)) {
        world_.disk.freeBytes = below(3000);
    } else {
        world_.disk.readOnlyFolders.insert(world_.home.path());
    }
    hasFault_ = true;
    return "the disk fails";
}

void Simulation::endFault() {
    world_.disk.freeBytes = std::numeric_limits<std::size_t>::max();
    world_.disk.readOnlyFolders.clear();
    if (!std::exchange(hasFault_, false)) return;
    note("the disk is well again");
    world_.platform.time.advance(5);
}

void Simulation::prepareEnd() {
    endFault();
    rules_.check(*program_);
    if (isAway_) note(changeFolder());
    // A change like any other: it takes what has lapsed out of the file, where a clock that was set back would find
    // it alive.
    model().flagStore().setPrio("no-card", "no card", false);
    world_.platform.time.runPending();
}

std::string Simulation::restart() {
    prepareEnd();
    program_->storeFiles.drain();
    end();
    startAgain();
    return "restart";
}

std::string Simulation::crash() {
    prepareEnd();
    world_.disk.dieAfter(0);
    end();
    world_.disk.revive();
    startAgain();
    return "crash and restart";
}

void Simulation::end() {
    lastTodos_ = todos().todos();
    lastFlags_ = model().flagStore().state();
    isMenuOpen_ = false;
    program_.reset();
    world_.spaces.levels.clear();  // the desktop takes back what a program leaves
    rules_.forget();
    world_.platform.time.runPending();
    require(world_.platform.time.pendingCount() == 0, "no timer outlives the program");
}

}  // namespace sunpane::testing
