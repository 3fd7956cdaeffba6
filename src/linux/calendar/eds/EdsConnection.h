#pragma once

#include <libecal/libecal.h>

#include <atomic>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "linux/calendar/CalendarService.h"
#include "linux/calendar/eds/GLibSupport.h"

namespace sunpane {

/// The calendars of Evolution Data Server, read and written with calls that wait for the server, each for a bounded
/// time. Lives on one thread whose main context runs between the calls and brings the news of changes.
class EdsConnection {
public:
    /// The registry of calendars, which may have to be started, and each calendar may take this long.
    static constexpr std::chrono::seconds registryLimit{15};
    static constexpr std::chrono::seconds calendarLimit{10};

    /// `changed` is called on the thread that this lives on.
    explicit EdsConnection(std::function<void()> changed) : changed_(std::move(changed)) {}
    ~EdsConnection();
    EdsConnection(const EdsConnection&) = delete;
    EdsConnection& operator=(const EdsConnection&) = delete;

    std::optional<std::vector<CalendarService::Calendar>> read();
    /// Writes nothing when `cancelled` is set before the server is told of the event.
    CalendarService::Added add(const std::string& text, const std::atomic<bool>& cancelled);

    /// Makes what runs and all later calls fail soon; any thread.
    void close() { watchdog_.close(); }

private:
    struct OpenCalendar {
        GObjectPointer<ECalClient> client;
        GObjectPointer<ECalClientView> view;
    };

    bool openRegistry();
    OpenCalendar* open(ESource* source);
    void forget(const std::string& uid);
    void watch(OpenCalendar& calendar);
    std::optional<std::string> readEvents(ECalClient* client);
    static void announce(EdsConnection* self) { self->changed_(); }

    std::function<void()> changed_;
    Watchdog watchdog_;
    GObjectPointer<ESourceRegistry> registry_;
    // By the source's identifier.
    std::map<std::string, OpenCalendar> calendars_;
};

}  // namespace sunpane
