#include "linux/calendar/CalendarReader.h"

#include <algorithm>
#include <mutex>
#include <set>
#include <string_view>
#include <utility>

#include "base/Dates.h"
#include "base/Text.h"
#include "base/Uuid.h"
#include "linux/calendar/IcsReading.h"
#include "linux/calendar/IcsWriting.h"

namespace sunpane {
namespace {

std::string folderIdentifier(const std::string& entry) {
    return "ics:" + text::toValidUtf8(entry);
}

}  // namespace

/// Takes tasks from the service's threads to the queue for as long as the reader lives.
class CalendarReader::Gate {
public:
    explicit Gate(WorkQueue& queue) : queue_(&queue) {}

    void post(SerialExecutor::Task task) {
        const std::lock_guard lock(mutex_);
        if (queue_ != nullptr) queue_->post(std::move(task));
    }
    void close() {
        const std::lock_guard lock(mutex_);
        queue_ = nullptr;
    }

private:
    std::mutex mutex_;
    WorkQueue* queue_;
};

CalendarReader::CalendarReader(Ports ports, Publish publish)
    : ports_(std::move(ports)), publish_(std::move(publish)), gate_(std::make_shared<Gate>(ports_.queue)) {}

CalendarReader::~CalendarReader() = default;

void CalendarReader::stop(std::function<void()> ended) {
    stopped_ = true;
    gate_->close();
    ports_.queue.post([this, ended = std::move(ended)] {
        end();
        ended();
    });
}

void CalendarReader::end() {
    for (Subscription* each : {&poll_, &settle_, &patience_, &serviceDeadline_, &serviceSettle_, &serviceRetry_})
        *each = {};
    pendingAdds_.clear();
    // The watches call the queue, so they go before it does. The service may take a while to let go.
    watches_.clear();
    service_.reset();
    files_.clear();
    serviceCalendars_.clear();
    published_ = nullptr;
}

void CalendarReader::start() {
    if (stopped_) return;
    if (ports_.makeService) {
        service_ = ports_.makeService([this, gate = gate_] { gate->post([this] { serviceChanged(); }); });
    }
    serviceSettled_ = service_ == nullptr;
    if (service_) {
        patience_ = ports_.queue.after(servicePatience, [this] {
            if (std::exchange(serviceSettled_, true)) return;
            publish();
        });
        askService();
    }
    check();
    poll_ = ports_.queue.every(pollInterval, [this] { check(); });
}

void CalendarReader::check() {
    const bool moved = moveSpan();
    const bool changed = readFolder();
    if (moved || changed) publish();
}

bool CalendarReader::moveSpan() {
    std::string zoneName = ports_.clock.timeZone();
    const LocalCalendar calendar(zoneName, "en_US");
    const Instant today = calendar.startOfDay(ports_.clock.now());
    const TimeSpan span{calendar.addingDays(today, -daysBefore), calendar.addingDays(today, daysAfter)};
    if (userZone_ && span == span_ && zoneName == zoneName_) return false;
    span_ = span;
    zoneName_ = std::move(zoneName);
    userZone_ = zones_.userZone(zoneName_);
    for (auto& [path, parsed] : files_)
        parsed.occurrences = nullptr;
    for (auto& calendarOfService : serviceCalendars_)
        calendarOfService.parsed.occurrences = nullptr;
    return true;
}

// The folder's own watch tells of calendars that come and go, each calendar folder's watch of its files.
void CalendarReader::watchFolders() {
    if (stopped_) return;
    std::set<std::string> wanted{ports_.folder};
    // The folder above tells when it is made.
    if (const auto slash = ports_.folder.rfind('/'); slash > 0 && slash != std::string::npos) {
        if (!ports_.files.exists(ports_.folder)) wanted.insert(ports_.folder.substr(0, slash));
    }
    for (const auto& calendar : found_) {
        if (!calendar.folder.empty() && wanted.size() <= maximumWatchedFolders) wanted.insert(calendar.folder);
    }
    std::erase_if(watches_, [&](const auto& watch) {
        return !wanted.contains(watch.first) || watch.second == nullptr || !watch.second->isCurrent();
    });
    for (const auto& folder : wanted) {
        if (watches_.contains(folder)) continue;
        watches_[folder] =
            ports_.folderEvents.watch(folder, ports_.queue, [this](const std::string&) { folderChanged(); });
    }
}

void CalendarReader::folderChanged() {
    if (std::exchange(folderSettling_, true)) return;
    settle_ = ports_.queue.after(settleTime, [this] {
        folderSettling_ = false;
        check();
    });
}

bool CalendarReader::readFolder() {
    // Watched before it is looked through, so that nothing happens unseen in between.
    watchFolders();
    auto found = scanCalendars(ports_.folder);
    const auto isSame = [](const IcsFolderCalendar& a, const IcsFolderCalendar& b) {
        return a.entry == b.entry && a.folder == b.folder;
    };
    bool changed = !folderRead_ || !std::equal(found.begin(), found.end(), found_.begin(), found_.end(), isSame);
    found_ = std::move(found);
    watchFolders();
    std::set<std::string_view> present;
    for (const auto& calendar : found_) {
        for (const auto& file : calendar.files) {
            if (stopped_) return false;
            present.insert(file.path);
            changed = readFile(file) || changed;
        }
    }
    changed = std::erase_if(files_, [&](const auto& file) { return !present.contains(file.first); }) > 0 || changed;
    folderRead_ = true;
    return changed;
}

bool CalendarReader::readFile(const IcsFolderCalendar::File& file) {
    const auto [entry, isNew] = files_.try_emplace(file.path);
    Parsed& parsed = entry->second;
    if (parsed.content && parsed.stamp == file.stamp) return false;
    const FileReading reading = ports_.files.read(file.path, maximumCalendarFileSize);
    // What was read before counts until the file can be read again, which the next look tries.
    if (reading.status != FileReading::Status::read) return isNew;
    // Written to since it was found: the stamp of what was read is the one to compare with.
    parsed = {reading.stamp, std::make_shared<const IcsContent>(readIcs(reading.bytes, zones_, stopped_)), nullptr};
    return true;
}

void CalendarReader::serviceChanged() {
    if (serviceSettle_) return;
    serviceSettle_ = ports_.queue.after(settleTime, [this] {
        serviceSettle_ = {};
        askService();
    });
}

void CalendarReader::askService() {
    if (serviceAsked_) {
        serviceChangedMeanwhile_ = true;
        return;
    }
    serviceAsked_ = true;
    serviceChangedMeanwhile_ = false;
    serviceDeadline_ = ports_.queue.after(serviceTimeout, [this] { serviceAnswered(std::nullopt); });
    service_->read([this, gate = gate_](std::optional<std::vector<CalendarService::Calendar>> answer) {
        gate->post([this, answer = std::move(answer)]() mutable { serviceAnswered(std::move(answer)); });
    });
}

void CalendarReader::serviceAnswered(std::optional<std::vector<CalendarService::Calendar>> answer) {
    serviceDeadline_ = {};
    serviceAsked_ = false;
    const bool first = !std::exchange(serviceSettled_, true);
    bool complete = answer.has_value();
    if (answer) {
        serviceKnown_ = true;
        std::vector<ServiceCalendar> known = std::move(serviceCalendars_);
        serviceCalendars_.clear();
        for (auto& calendar : *answer) {
            ServiceCalendar taken{std::move(calendar.info), {}};
            complete = complete && calendar.text.has_value() && calendar.isWatched;
            const auto before = std::find_if(known.begin(), known.end(), [&](const ServiceCalendar& each) {
                return each.info.identifier == taken.info.identifier;
            });
            if (calendar.text) {
                taken.parsed.content = std::make_shared<const IcsContent>(readIcs(*calendar.text, zones_, stopped_));
            } else if (before != known.end()) {
                taken.parsed = std::move(before->parsed);
            }
            serviceCalendars_.push_back(std::move(taken));
        }
    }
    if (answer || first) publish();
    if (complete) {
        retryDelay_ = firstRetry;
        serviceRetry_ = {};
    } else {
        retryLater();
    }
    if (serviceChangedMeanwhile_) askService();
}

// A service that died or was away tells nothing when it comes back.
void CalendarReader::retryLater() {
    serviceRetry_ = ports_.queue.after(retryDelay_, [this] { askService(); });
    retryDelay_ = std::min(2 * retryDelay_, longestRetry);
}

CalendarSnapshot::Part CalendarReader::toPart(std::size_t calendar, Parsed& parsed) const {
    if (!parsed.occurrences) {
        parsed.occurrences =
            std::make_shared<const std::vector<IcsOccurrence>>(expand(*parsed.content, span_, *userZone_, stopped_));
    }
    return {calendar, parsed.content, parsed.occurrences};
}

std::vector<std::string> CalendarReader::unread() const {
    std::vector<std::string> unread;
    for (const auto& calendar : found_) {
        const bool isRead = std::all_of(calendar.files.begin(), calendar.files.end(), [&](const auto& file) {
            const auto found = files_.find(file.path);
            return found != files_.end() && found->second.content != nullptr;
        });
        if (!isRead) unread.push_back(eventPrefix(folderIdentifier(calendar.entry)));
    }
    if (service_ != nullptr && !serviceKnown_) unread.emplace_back(CalendarService::identifierPrefix);
    for (const auto& calendar : serviceCalendars_) {
        if (!calendar.parsed.content) unread.push_back(eventPrefix(calendar.info.identifier));
    }
    return unread;
}

void CalendarReader::publish() {
    if (!folderRead_ || !serviceSettled_ || stopped_) return;
    std::vector<CalendarInfo> calendars;
    std::vector<CalendarSnapshot::Part> parts;
    for (const auto& calendar : found_) {
        std::optional<std::string> title;
        for (const auto& file : calendar.files) {
            Parsed& parsed = files_[file.path];
            if (!parsed.content) continue;
            if (!title) title = parsed.content->calendarName;
            parts.push_back(toPart(calendars.size(), parsed));
        }
        calendars.push_back(
            {folderIdentifier(calendar.entry), title ? std::move(*title) : text::toValidUtf8(calendar.title()), false});
    }
    for (auto& calendar : serviceCalendars_) {
        if (calendar.parsed.content) parts.push_back(toPart(calendars.size(), calendar.parsed));
        calendars.push_back(calendar.info);
    }
    auto snapshot = std::make_shared<const CalendarSnapshot>(span_, std::move(calendars), std::move(parts), unread());
    // Whoever looks at the calendars begins anew at each change.
    if (stopped_ || (published_ && published_->saysTheSameAs(*snapshot))) return;
    published_ = std::move(snapshot);
    publish_(published_);
}

void CalendarReader::add(const CalendarStore::NewEvent& event, std::function<void(std::optional<std::string>)> done) {
    const std::string uid = text::lowercased(Uuid::random().toString());
    const std::string text = writeIcs(event, uid, ports_.clock.now());
    const std::uint64_t number = nextAdd_++;
    PendingAdd& pending = pendingAdds_[number];
    pending.done = std::move(done);
    if (!service_) return finishAdd(number, addToFolder(uid, text));
    pending.deadline = ports_.queue.after(serviceTimeout, [this, number] { finishAdd(number, std::nullopt); });
    service_->add(text, pending.cancelled,
                  [this, gate = gate_, number, uid, text](const CalendarService::Added& added) {
                      gate->post([this, number, added, uid, text] { addAnswered(number, added, uid, text); });
                  });
}

void CalendarReader::addAnswered(std::uint64_t number, const CalendarService::Added& added, const std::string& uid,
                                 const std::string& text) {
    if (!pendingAdds_.contains(number)) return;
    using Outcome = CalendarService::Added::Outcome;
    switch (added.outcome) {
        case Outcome::added:
            askService();
            return finishAdd(number, eventIdentifier(added.calendarIdentifier, added.uid, ""));
        case Outcome::noCalendar:
            return finishAdd(number, addToFolder(uid, text));
        case Outcome::failed:
            return finishAdd(number, std::nullopt);
    }
}

void CalendarReader::finishAdd(std::uint64_t number, std::optional<std::string> identifier) {
    auto pending = pendingAdds_.extract(number);
    if (pending.empty()) return;
    *pending.mapped().cancelled = true;
    pending.mapped().done(std::move(identifier));
}

// A file for each event: nothing that is already there has to be written again.
std::optional<std::string> CalendarReader::addToFolder(const std::string& uid, const std::string& text) {
    const std::string folder = ports_.folder + "/" + defaultCalendar;
    if (!ports_.files.createFolders(folder)) return std::nullopt;
    if (!ports_.files.replaceAtomically(folder + "/" + uid + ".ics", text)) return std::nullopt;
    check();
    return eventIdentifier(folderIdentifier(defaultCalendar), uid, "");
}

}  // namespace sunpane
