#include "linux/calendar/DesktopCalendarStore.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

#include "base/AppIdentity.h"
#include "linux/calendar/CalendarReader.h"

namespace sunpane {
namespace {

struct AccessName {
    CalendarAccess access;
    const char* name;
};
constexpr AccessName accessNames[] = {{CalendarAccess::full, "fullAccess"},
                                      {CalendarAccess::writeOnly, "writeOnly"},
                                      {CalendarAccess::denied, "denied"},
                                      {CalendarAccess::restricted, "restricted"}};

}  // namespace

/// Where the queue leaves the newest snapshot for the main thread.
struct DesktopCalendarStore::Mailbox {
    std::mutex mutex;
    std::condition_variable arrived;
    std::shared_ptr<const CalendarSnapshot> snapshot;
};

/// A reader and the queue on which it lives.
struct DesktopCalendarStore::Reading {
    std::unique_ptr<CalendarReader> reader;
    // Destroyed before the reader, which works on it.
    std::unique_ptr<WorkQueue> queue;
};

DesktopCalendarStore::DesktopCalendarStore(Ports ports)
    : ports_(std::move(ports)), mailbox_(std::make_shared<Mailbox>()) {
    DesktopCalendarStore::access();
}

DesktopCalendarStore::~DesktopCalendarStore() {
    alive_.reset();
    stopReading();
    for (const auto& reading : ending_)
        reading->queue->drain();
}

std::vector<std::string> DesktopCalendarStore::accessValues() {
    std::vector<std::string> values;
    for (const auto& each : accessNames)
        values.emplace_back(each.name);
    return values;
}

CalendarAccess DesktopCalendarStore::rememberedAccess(const UserDefaults& defaults) {
    const auto stored = defaults.read<std::string>(accessKey);
    for (const auto& each : accessNames) {
        if (stored.value == each.name) return each.access;
    }
    return CalendarAccess::notDetermined;
}

CalendarAccess DesktopCalendarStore::access() const {
    const CalendarAccess access = ports_.fixedAccess ? *ports_.fixedAccess : rememberedAccess(ports_.defaults);
    if (access == CalendarAccess::full) {
        startReading();
    } else {
        stopReading();
    }
    return access;
}

void DesktopCalendarStore::startReading() const {
    if (reading_) return;
    reading_ = std::make_unique<Reading>();
    reading_->queue = ports_.queues.makeQueue(std::string(appIdentifier) + ".calendar");
    // The store is told through the main loop; the snapshot itself waits in the mailbox, where `loadNow` finds it
    // without the loop.
    const auto publish = [this, mailbox = mailbox_, &runLoop = ports_.runLoop,
                          weak = std::weak_ptr(alive_)](std::shared_ptr<const CalendarSnapshot> snapshot) {
        {
            const std::lock_guard lock(mailbox->mutex);
            mailbox->snapshot = std::move(snapshot);
            mailbox->arrived.notify_all();
        }
        runLoop.post([this, weak] {
            if (!weak.expired()) adopt();
        });
    };
    reading_->reader =
        std::make_unique<CalendarReader>(CalendarReader::Ports{ports_.clock, *reading_->queue, ports_.folderEvents,
                                                               ports_.files, ports_.folder, ports_.makeService},
                                         publish);
    reading_->queue->post([reader = reading_->reader.get()] { reader->start(); });
}

void DesktopCalendarStore::stopReading() const {
    if (!reading_) return;
    const Reading* const ended = reading_.get();
    ending_.push_back(std::move(reading_));
    ended->reader->stop([this, ended, &runLoop = ports_.runLoop, weak = std::weak_ptr(alive_)] {
        runLoop.post([this, ended, weak] {
            if (weak.expired()) return;
            std::erase_if(ending_, [&](const auto& each) { return each.get() == ended; });
        });
    });
    snapshot_ = nullptr;
    checkRequested_ = false;
    // What the reader still leaves in the old one counts no more.
    mailbox_ = std::make_shared<Mailbox>();
}

void DesktopCalendarStore::adopt() const {
    {
        const std::lock_guard lock(mailbox_->mutex);
        // Nothing there: reading was stopped, or the newest was already taken.
        if (!mailbox_->snapshot) return;
        snapshot_ = std::move(mailbox_->snapshot);
        mailbox_->snapshot = nullptr;
    }
    checkRequested_ = false;
    changes_.call();
}

void DesktopCalendarStore::requestFullAccess(std::function<void(bool granted)> answer) {
    const CalendarAccess known = access();
    if (known != CalendarAccess::notDetermined || !ports_.prompt) {
        ports_.runLoop.post([answer = std::move(answer), granted = known == CalendarAccess::full] { answer(granted); });
        return;
    }
    askAgain(std::move(answer));
}

void DesktopCalendarStore::askAgain(std::function<void(bool granted)> answer) {
    // The first answer is everyone's who asked until then.
    waitingForAnswer_.push_back(std::move(answer));
    ports_.prompt([this, weak = std::weak_ptr(alive_)](CalendarAccess answered) {
        if (!weak.expired()) answerPrompt(answered);
    });
}

void DesktopCalendarStore::answerPrompt(CalendarAccess access) {
    for (const auto& each : accessNames) {
        if (access == each.access) ports_.defaults.set(accessKey, std::string(each.name));
    }
    const bool granted = this->access() == CalendarAccess::full;
    for (const auto& answer : std::exchange(waitingForAnswer_, {}))
        answer(granted);
}

bool DesktopCalendarStore::loaded() const {
    return access() == CalendarAccess::full && snapshot_ != nullptr;
}

std::vector<std::string> DesktopCalendarStore::unread() const {
    return loaded() ? snapshot_->unread() : std::vector<std::string>();
}

std::vector<CalendarEvent> DesktopCalendarStore::events(Instant from, Instant to) const {
    if (!loaded()) return {};
    const TimeSpan span = snapshot_->span();
    if ((from < span.from || to > span.to) && !std::exchange(checkRequested_, true)) {
        // The clock was set, or the machine slept for weeks; the change is announced once the days are read.
        reading_->queue->post([reader = reading_->reader.get()] { reader->check(); });
    }
    return snapshot_->events(from, to);
}

std::vector<CalendarInfo> DesktopCalendarStore::calendars() const {
    return loaded() ? snapshot_->calendars() : std::vector<CalendarInfo>();
}

void DesktopCalendarStore::add(const NewEvent& event, std::function<void(std::optional<std::string> identifier)> done) {
    const auto tell = [&runLoop = ports_.runLoop, done = std::move(done)](std::optional<std::string> identifier) {
        runLoop.post([done, identifier = std::move(identifier)] { done(identifier); });
    };
    if (access() != CalendarAccess::full) return tell(std::nullopt);
    reading_->queue->post([reader = reading_->reader.get(), event, tell] { reader->add(event, tell); });
}

Subscription DesktopCalendarStore::observeChanges(std::function<void()> handler) {
    return changes_.add(std::move(handler));
}

bool DesktopCalendarStore::loadNow(Seconds timeout) {
    if (access() != CalendarAccess::full) return false;
    {
        std::unique_lock lock(mailbox_->mutex);
        mailbox_->arrived.wait_for(lock, std::chrono::duration<double>(timeout),
                                   [&] { return mailbox_->snapshot != nullptr || snapshot_ != nullptr; });
    }
    adopt();
    return loaded();
}

}  // namespace sunpane
