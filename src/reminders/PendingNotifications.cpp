#include "reminders/PendingNotifications.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/AppIdentity.h"
#include "base/Dates.h"
#include "reminders/TriggerMatch.h"

namespace sunpane {

namespace {

// Whether one that waits for `a` need not wait for anything else when it becomes `b`.
bool isForSameMoments(const NotificationRequest& a, const NotificationRequest& b) {
    return a.trigger == b.trigger && (a.trigger.repeats || a.intended == b.intended);
}

}  // namespace

/// The clocks that triggers are read from, at one moment.
class PendingNotifications::Faces {
public:
    explicit Faces(const Clock& clock) : now(clock.now()), userZone_(clock.timeZone()) {}

    CivilTime time(const CalendarTrigger& trigger) { return of(trigger).civilTime(now); }
    CivilTime time(const CalendarTrigger& trigger, Instant instant) { return of(trigger).civilTime(instant); }
    Instant instant(const CalendarTrigger& trigger, const Reading& reading) {
        const LocalCalendar& face = of(trigger);
        const auto second = reading.isSecond ? face.secondInstant(reading.time) : std::nullopt;
        return second.value_or(face.instant(reading.time));
    }

    const Instant now;

private:
    const LocalCalendar& of(const CalendarTrigger& trigger) {
        const std::string& zone = trigger.timeZone ? *trigger.timeZone : userZone_;
        return byZone_.try_emplace(zone, zone, "en_US_POSIX").first->second;
    }

    std::string userZone_;
    std::map<std::string, LocalCalendar> byZone_;
};

PendingNotifications::PendingNotifications(const Ports& ports, std::string statePath)
    : with_(ports),
      path_(std::move(statePath)),
      queue_(with_.queues.makeQueue(std::string(appIdentifier) + ".notifications.io")),
      self_(std::make_shared<PendingNotifications*>(this)) {
    load();
    with_.service.setClickHandler([this](std::uint32_t number) { clicked(number); });
    with_.service.setAvailabilityHandler([this] { lookSoon(); });
    lookSoon();
}

PendingNotifications::~PendingNotifications() {
    with_.service.setClickHandler(nullptr);
    with_.service.setAvailabilityHandler(nullptr);
    // From here on nothing calls back.
    self_.reset();
    if (isDirty_) write();
    queue_->drain();
}

void PendingNotifications::post(std::function<void(PendingNotifications&)> task) {
    with_.runLoop.post([weak = std::weak_ptr(self_), task = std::move(task)] {
        if (const auto self = weak.lock()) task(**self);
    });
}

void PendingNotifications::load() {
    const FileReading file = with_.files.read(path_, maximumNotificationStateBytes);
    if (file.status == FileReading::Status::absent) return;
    auto state = decodeNotifications(file.bytes);
    if (file.status != FileReading::Status::read || !state) {
        with_.files.rename(path_, path_ + asideSuffix);
        return;
    }
    shown_ = std::move(state->shown);
    for (auto& waiting : state->waiting) {
        std::string identifier = waiting.request.identifier;
        entries_.insert_or_assign(std::move(identifier), Entry{std::move(waiting), ++lastNumber_});
    }
}

void PendingNotifications::save() {
    isDirty_ = true;
    if (std::exchange(isWritePosted_, true)) return;
    post([](PendingNotifications& self) { self.write(); });
}

void PendingNotifications::write() {
    isWritePosted_ = false;
    isDirty_ = false;
    NotificationState state{{}, shown_};
    for (const auto& [identifier, entry] : entries_)
        state.waiting.push_back(entry.waiting);
    const auto written = [weak = std::weak_ptr(self_)](bool succeeded) {
        const auto self = weak.lock();
        if (!self || succeeded) return;
        (*self)->isDirty_ = true;
        (*self)->writeAgain_ = (*self)->with_.runLoop.after(retryInterval, [weak] {
            if (const auto later = weak.lock()) (*later)->save();
        });
    };
    queue_->post(
        [&files = with_.files, &runLoop = with_.runLoop, path = path_, bytes = encodeNotifications(state), written] {
            files.createFolders(path.substr(0, path.find_last_of('/')));
            const bool succeeded = files.replaceAtomically(path, bytes);
            runLoop.post([written, succeeded] { written(succeeded); });
        });
}

void PendingNotifications::authorization(std::function<void(NotificationAuthorization)> answer) {
    post([answer = std::move(answer)](PendingNotifications& self) {
        answer(self.with_.service.available() ? NotificationAuthorization::authorized
                                              : NotificationAuthorization::denied);
    });
}

void PendingNotifications::requestAuthorization(std::function<void(bool granted)> answer) {
    post([answer = std::move(answer)](PendingNotifications& self) { answer(self.with_.service.available()); });
}

void PendingNotifications::pending(std::function<void(std::vector<NotificationRequest>)> answer) {
    post([answer = std::move(answer)](PendingNotifications& self) {
        std::vector<NotificationRequest> requests;
        for (const auto& [identifier, entry] : self.entries_)
            requests.push_back(entry.waiting.request);
        answer(std::move(requests));
    });
}

void PendingNotifications::add(NotificationRequest request) {
    const auto found = entries_.find(request.identifier);
    if (found != entries_.end() && found->second.waiting.request == request) return;
    if (found != entries_.end() && isForSameMoments(found->second.waiting.request, request)) {
        // Only what it says is new. It may be due already and wait for the service.
        found->second.waiting.request = std::move(request);
        save();
        return;
    }
    Faces faces(with_.clock);
    const auto first = firstReading(request, faces);
    if (!first) {
        removePending({request.identifier});
        return;
    }
    if (found == entries_.end() && entries_.size() >= maximumWaiting) return;
    std::string identifier = request.identifier;
    entries_.insert_or_assign(std::move(identifier),
                              Entry{{std::move(request), first->time, first->isSecond}, ++lastNumber_});
    save();
    lookSoon();
}

std::optional<PendingNotifications::Reading> PendingNotifications::firstReading(const NotificationRequest& request,
                                                                                Faces& faces) const {
    const CalendarTrigger& trigger = request.trigger;
    if (!isValid(trigger)) return std::nullopt;
    auto next = nextMatch(trigger, faces.time(trigger));
    if (request.intended) {
        const CivilTime time = faces.time(trigger, *request.intended);
        const bool isMeant = matches(trigger, time);
        const bool isOver = *request.intended <= faces.now || wasShown(request.identifier, *request.intended);
        if (isMeant && isOver && !trigger.repeats) return std::nullopt;
        if (isMeant && !isOver && (!next || time <= *next))
            return Reading{time, faces.instant(trigger, {time}) < *request.intended};
    }
    for (; next; next = trigger.repeats ? nextMatch(trigger, *next) : std::nullopt) {
        const Instant moment = faces.instant(trigger, {*next});
        if (wasShown(request.identifier, moment)) continue;
        if (moment > faces.now) return Reading{*next};
        // Over, although the clock will show it again.
        const Instant second = faces.instant(trigger, {*next, true});
        if (second > faces.now && !wasShown(request.identifier, second)) return Reading{*next, true};
    }
    return std::nullopt;
}

void PendingNotifications::removePending(const std::vector<std::string>& identifiers) {
    std::size_t removed = 0;
    for (const auto& identifier : identifiers)
        removed += entries_.erase(identifier);
    if (removed == 0) return;
    save();
    lookSoon();
}

void PendingNotifications::setResponseHandler(std::function<void(const NotificationResponse&)> handler) {
    respond_ = std::move(handler);
}

void PendingNotifications::wallClockChanged() {
    look();
}

void PendingNotifications::lookSoon() {
    if (std::exchange(isLookPosted_, true)) return;
    post([](PendingNotifications& self) {
        self.isLookPosted_ = false;
        self.look();
    });
}

void PendingNotifications::look() {
    Faces faces(with_.clock);
    if (!lastLook_ || faces.now < *lastLook_) startAfreshIfSetBack(faces);
    lastLook_ = faces.now;

    std::vector<std::pair<Instant, std::string>> due;
    std::vector<std::string> expired;
    Seconds sleep = longestSleep;
    bool isAnyoneWaiting = false;
    for (const auto& [identifier, entry] : entries_) {
        if (entry.isShowing) continue;
        const NotificationRequest& request = entry.waiting.request;
        const Instant moment = faces.instant(request.trigger, {entry.waiting.next, entry.waiting.isSecond});
        if (moment > faces.now) {
            sleep = std::min(sleep, moment - faces.now);
        } else if (request.expires && *request.expires <= faces.now) {
            expired.push_back(identifier);
            continue;
        } else {
            due.emplace_back(moment, identifier);
        }
        isAnyoneWaiting = true;
    }
    timer_.cancel();
    // A timer that fires a touch early must not make this a busy loop.
    constexpr Seconds shortestSleep = 0.01;
    if (isAnyoneWaiting) timer_ = with_.runLoop.after(std::max(sleep, shortestSleep), [this] { look(); });

    for (const auto& identifier : expired)
        pass(identifier);
    if (!with_.service.available()) return;
    std::sort(due.begin(), due.end());
    for (const auto& [moment, identifier] : due) {
        const auto found = entries_.find(identifier);
        if (found != entries_.end() && !found->second.isShowing) show(found->second, moment);
    }
}

void PendingNotifications::startAfreshIfSetBack(Faces& faces) {
    for (auto& [identifier, entry] : entries_) {
        const CalendarTrigger& trigger = entry.waiting.request.trigger;
        if (!trigger.repeats) continue;
        const auto first = nextMatch(trigger, faces.time(trigger));
        const auto second = first ? nextMatch(trigger, *first) : std::nullopt;
        if (!second || entry.waiting.next <= *second) continue;
        entry.waiting.next = *first;
        entry.waiting.isSecond = false;
        save();
    }
}

void PendingNotifications::show(Entry& entry, Instant moment) {
    entry.isShowing = true;
    const NotificationRequest request = entry.waiting.request;
    with_.service.show(request.title, request.body,
                       [weak = std::weak_ptr(self_), identifier = request.identifier, userInfo = request.userInfo,
                        entryNumber = entry.number, moment](std::uint32_t number) {
                           const auto self = weak.lock();
                           if (self) (*self)->shown(identifier, entryNumber, moment, number, userInfo);
                       });
}

void PendingNotifications::shown(const std::string& identifier, std::uint64_t entryNumber, Instant moment,
                                 std::uint32_t number, std::map<std::string, std::string> userInfo) {
    const auto found = entries_.find(identifier);
    // Absent when it was removed or replaced while the service was busy.
    const bool isPending = found != entries_.end() && found->second.number == entryNumber;
    if (isPending) found->second.isShowing = false;
    if (number == 0) {
        // What remains due is tried again at the next look.
        if (isPending && !timer_) timer_ = with_.runLoop.after(retryInterval, [this] { look(); });
        return;
    }
    if (shown_.size() >= maximumShown) shown_.erase(shown_.begin());
    shown_.push_back({with_.service.instance(), number, identifier, std::move(userInfo), moment});
    if (isPending) pass(identifier);
    save();
}

void PendingNotifications::pass(const std::string& identifier) {
    const auto found = entries_.find(identifier);
    if (found == entries_.end()) return;
    WaitingRequest& waiting = found->second.waiting;
    const CalendarTrigger& trigger = waiting.request.trigger;
    const CivilTime after = std::max(waiting.next, Faces(with_.clock).time(trigger));
    const auto next = trigger.repeats ? nextMatch(trigger, after) : std::nullopt;
    if (next) {
        waiting.next = *next;
        waiting.isSecond = false;
    } else {
        entries_.erase(found);
    }
    save();
    lookSoon();
}

bool PendingNotifications::wasShown(const std::string& identifier, Instant moment) const {
    return std::any_of(shown_.begin(), shown_.end(), [&](const ShownNotification& shown) {
        return shown.identifier == identifier && shown.moment == moment;
    });
}

void PendingNotifications::clicked(std::uint32_t number) {
    const std::string instance = with_.service.instance();
    const auto found = std::find_if(shown_.rbegin(), shown_.rend(), [&](const ShownNotification& shown) {
        return shown.number == number && shown.instance == instance;
    });
    if (found == shown_.rend() || !respond_) return;
    // A copy: the handler may make more be shown.
    const NotificationResponse response{found->identifier, found->userInfo};
    respond_(response);
}

}  // namespace sunpane
