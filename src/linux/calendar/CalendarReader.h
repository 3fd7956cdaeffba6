#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Clock.h"
#include "base/WorkQueue.h"
#include "linux/calendar/CalendarService.h"
#include "linux/calendar/CalendarSnapshot.h"
#include "linux/calendar/IcsFolder.h"
#include "linux/calendar/IcsZones.h"
#include "platform/FileSystem.h"
#include "platform/FolderEvents.h"

namespace sunpane {

/// Reads the calendars of the folder and of the service and publishes a snapshot whenever it says something new. A file
/// is parsed again only when its stamp differs. Lives on its queue: all but the constructor, the destructor and `stop`
/// is called there. `stop` comes first, then the queue is destroyed, then the reader.
class CalendarReader {
public:
    /// The folder is looked through this often (s), for changes that no event told of and for the turn of the day.
    static constexpr Seconds pollInterval{60};
    /// A burst of changes is read once, this long (s) after its first.
    static constexpr Seconds settleTime{0.5};
    /// The first snapshot waits this long (s) for the service, and goes without it then.
    static constexpr Seconds servicePatience{5};
    /// A service that has not answered for this long (s) is asked again, and a new event counts as not written.
    static constexpr Seconds serviceTimeout{30};
    /// A calendar of the service that could not be read or watched is tried again this long (s) after, then ever less
    /// often.
    static constexpr Seconds firstRetry{2};
    static constexpr Seconds longestRetry{600};
    /// How many days before and after today a snapshot covers.
    static constexpr int daysBefore = 7;
    static constexpr int daysAfter = 35;
    /// Calendars in folders of their own past these are not watched, only polled: a watch costs a thread.
    static constexpr std::size_t maximumWatchedFolders = 16;
    /// Where new events go when no service takes them.
    static constexpr const char* defaultCalendar = "Dawnly";

    struct Ports {
        const Clock& clock;
        WorkQueue& queue;
        FolderEvents& folderEvents;
        FileSystem& files;
        std::string folder;
        CalendarServiceMaker makeService;
    };
    using Publish = std::function<void(std::shared_ptr<const CalendarSnapshot>)>;

    /// `publish` is called on the queue.
    CalendarReader(Ports ports, Publish publish);
    ~CalendarReader();

    /// Tells what is running to end as soon as it can, without waiting for that; nothing is published afterwards.
    /// `ended` is called on the queue once nothing but the destruction is left to do. Main thread.
    void stop(std::function<void()> ended);

    void start();

    /// Looks for changes now.
    void check();

    /// Writes an event; `done` is called on the queue, with nothing when that failed.
    void add(const CalendarStore::NewEvent& event, std::function<void(std::optional<std::string>)> done);

private:
    struct Parsed {
        FileStamp stamp;
        /// What was read last; null until the first reading that succeeds.
        std::shared_ptr<const IcsContent> content;
        /// What of it falls into the span; null until it is needed.
        std::shared_ptr<const std::vector<IcsOccurrence>> occurrences;
    };
    struct ServiceCalendar {
        CalendarInfo info;
        Parsed parsed;
    };
    struct PendingAdd {
        std::function<void(std::optional<std::string>)> done;
        Subscription deadline;
        std::shared_ptr<std::atomic<bool>> cancelled = std::make_shared<std::atomic<bool>>(false);
    };
    class Gate;

    void end();
    bool moveSpan();
    bool readFolder();
    bool readFile(const IcsFolderCalendar::File& file);
    void watchFolders();
    void folderChanged();

    void askService();
    void serviceChanged();
    void retryLater();
    void serviceAnswered(std::optional<std::vector<CalendarService::Calendar>> answer);
    void addAnswered(std::uint64_t number, const CalendarService::Added& added, const std::string& uid,
                     const std::string& text);
    void finishAdd(std::uint64_t number, std::optional<std::string> identifier);
    std::optional<std::string> addToFolder(const std::string& uid, const std::string& text);

    void publish();
    std::vector<std::string> unread() const;
    CalendarSnapshot::Part toPart(std::size_t calendar, Parsed& parsed) const;

    Ports ports_;
    Publish publish_;
    // What was published last.
    std::shared_ptr<const CalendarSnapshot> published_;
    StopFlag stopped_{false};
    IcsZones zones_;

    TimeSpan span_;
    std::string zoneName_;
    IcsZonePointer userZone_;

    std::vector<IcsFolderCalendar> found_;
    // By path.
    std::map<std::string, Parsed> files_;
    std::map<std::string, std::unique_ptr<FolderEventSource>> watches_;
    bool folderRead_ = false;
    bool folderSettling_ = false;

    std::shared_ptr<Gate> gate_;
    std::vector<ServiceCalendar> serviceCalendars_;
    bool serviceAsked_ = false;
    bool serviceChangedMeanwhile_ = false;
    bool serviceSettled_ = false;
    // Whether it ever told which calendars there are.
    bool serviceKnown_ = false;
    Seconds retryDelay_ = firstRetry;
    std::map<std::uint64_t, PendingAdd> pendingAdds_;
    std::uint64_t nextAdd_ = 0;

    Subscription poll_;
    Subscription settle_;
    Subscription patience_;
    Subscription serviceDeadline_;
    Subscription serviceSettle_;
    Subscription serviceRetry_;
    // Goes first: it may still be calling.
    std::unique_ptr<CalendarService> service_;
};

}  // namespace sunpane
