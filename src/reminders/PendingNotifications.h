#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Clock.h"
#include "base/RunLoop.h"
#include "base/WorkQueue.h"
#include "platform/FileSystem.h"
#include "platform/NotificationService.h"
#include "platform/UserNotifications.h"
#include "reminders/NotificationState.h"

namespace sunpane {

/// The notification centre for a desktop whose service can only show a notification right now. Requests wait here, in
/// a state file that outlives the program, and are shown when the wall clock reaches their moment.
///
/// - A request that comes due while the program does not run, or while there is no service, is shown once as soon as
///   both are there, unless it has expired by then.
/// - A moment is shown once: not again when the clock is set back across it, nor when a zone or the end of
///   daylight-saving time brings its reading back. Only a clock that goes back by more than one period of a repeating
///   request starts that request afresh. A program that is killed between showing and noting it may show it again.
/// - A click is understood as long as the service runs that showed the notification.
///
/// One instance, owned by the start-up code; main thread only, but for the writing of the file.
class PendingNotifications : public UserNotificationCenter {
public:
    /// While anything waits, the wall clock is looked at this often (s) at least: timers stand still while the machine
    /// sleeps and know nothing of a clock that is set.
    static constexpr Seconds longestSleep = 60;
    /// What is due and could not be shown, or written, is tried again after this long (s).
    static constexpr Seconds retryInterval = 60;
    /// Requests beyond this many are not taken.
    static constexpr std::size_t maximumWaiting = 4096;
    /// That many shown notifications are remembered for their clicks.
    static constexpr std::size_t maximumShown = 256;
    /// Stands for the state file's name in the name under which one that cannot be read is kept aside.
    static constexpr const char* asideSuffix = ".unreadable";

    struct Ports {
        NotificationService& service;
        const Clock& clock;
        RunLoop& runLoop;
        FileSystem& files;
        WorkQueueFactory& queues;
    };

    /// Reads the state file; what came due meanwhile is shown from the main loop.
    PendingNotifications(const Ports& ports, std::string statePath);
    /// Blocks until the state is written.
    ~PendingNotifications() override;
    PendingNotifications(const PendingNotifications&) = delete;
    PendingNotifications& operator=(const PendingNotifications&) = delete;

    void authorization(std::function<void(NotificationAuthorization)> answer) override;
    void requestAuthorization(std::function<void(bool granted)> answer) override;
    void pending(std::function<void(std::vector<NotificationRequest>)> answer) override;
    void add(NotificationRequest request) override;
    void removePending(const std::vector<std::string>& identifiers) override;
    void setResponseHandler(std::function<void(const NotificationResponse&)> handler) override;

    /// The wall clock may have jumped or the zone changed, as after the machine slept: looks at once.
    void wallClockChanged();

private:
    class Faces;
    // A moment as a clock shows it.
    struct Reading {
        CivilTime time;
        // Whether, when the clock shows it twice, the second time is meant.
        bool isSecond = false;
    };
    struct Entry {
        WaitingRequest waiting;
        // Tells it from a later request under the same identifier.
        std::uint64_t number = 0;
        // Whether the service has been asked to show it and has not answered.
        bool isShowing = false;
    };
    using Entries = std::map<std::string, Entry>;

    void load();
    void save();
    void write();
    void lookSoon();
    void look();
    void startAfreshIfSetBack(Faces& faces);
    void show(Entry& entry, Instant moment);
    void shown(const std::string& identifier, std::uint64_t entryNumber, Instant moment, std::uint32_t number,
               std::map<std::string, std::string> userInfo);
    // Moves a repeating request to its next moment; drops another one.
    void pass(const std::string& identifier);
    // When a request that is added now comes due first; absent when it never does.
    std::optional<Reading> firstReading(const NotificationRequest& request, Faces& faces) const;
    bool wasShown(const std::string& identifier, Instant moment) const;
    void clicked(std::uint32_t number);
    void post(std::function<void(PendingNotifications&)> task);

    Ports with_;
    std::string path_;
    std::unique_ptr<WorkQueue> queue_;
    std::function<void(const NotificationResponse&)> respond_;
    Entries entries_;
    std::vector<ShownNotification> shown_;
    std::uint64_t lastNumber_ = 0;
    // When it was looked at the clock last; the clock was set back when it shows less.
    std::optional<Instant> lastLook_;
    bool isLookPosted_ = false;
    bool isDirty_ = false;
    bool isWritePosted_ = false;
    Subscription timer_;
    Subscription writeAgain_;
    std::shared_ptr<PendingNotifications*> self_;
};

}  // namespace sunpane
