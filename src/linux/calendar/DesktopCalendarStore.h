#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Clock.h"
#include "base/HandlerList.h"
#include "base/RunLoop.h"
#include "base/WorkQueue.h"
#include "linux/calendar/CalendarService.h"
#include "linux/calendar/CalendarSnapshot.h"
#include "platform/CalendarStore.h"
#include "platform/FileSystem.h"
#include "platform/FolderEvents.h"
#include "platform/UserDefaults.h"

namespace sunpane {

/// Asks the user whether the program may read the calendars, and answers once on the main thread. Called again while
/// the question is open, it only brings that to the front.
using CalendarAccessPrompt = std::function<void(std::function<void(CalendarAccess)> answer)>;

/// The calendars of a folder of calendar files and of the desktop's calendar service, as one store. Main thread;
/// reading happens on a queue of its own and starts when full access is first seen. When access is taken back nobody
/// waits for what is being read; only the destructor does, for the moment in which reading stops.
///
/// The user's answer is kept under the key `calendarAccess` ("fullAccess", "writeOnly", "denied" or "restricted") and
/// is looked up at every question, so that a change in the settings counts at once.
class DesktopCalendarStore : public CalendarStore {
public:
    static constexpr const char* accessKey = "calendarAccess";

    struct Ports {
        const Clock& clock;
        RunLoop& runLoop;
        WorkQueueFactory& queues;
        FolderEvents& folderEvents;
        FileSystem& files;
        UserDefaults& defaults;
        /// The folder of calendars; it need not exist.
        std::string folder;
        /// Both may be null: then nobody is asked, which is a refusal; and only the folder is read.
        CalendarAccessPrompt prompt;
        CalendarServiceMaker makeService;
        /// In place of what the user answered: for a program that he runs by hand.
        std::optional<CalendarAccess> fixedAccess;
    };

    explicit DesktopCalendarStore(Ports ports);
    ~DesktopCalendarStore() override;

    /// What may stand under `accessKey`.
    static std::vector<std::string> accessValues();
    /// What the user answered, as `defaults` remember it.
    static CalendarAccess rememberedAccess(const UserDefaults& defaults);

    CalendarAccess access() const override;
    void requestFullAccess(std::function<void(bool granted)> answer) override;
    /// Asks the user even if there is an answer, which stays until there is another. `prompt` must be set.
    void askAgain(std::function<void(bool granted)> answer);
    bool loaded() const override;
    std::vector<std::string> unread() const override;
    std::vector<CalendarEvent> events(Instant from, Instant to) const override;
    std::vector<CalendarInfo> calendars() const override;
    void add(const NewEvent& event, std::function<void(std::optional<std::string> identifier)> done) override;
    Subscription observeChanges(std::function<void()> handler) override;

    /// Reads the calendars and waits for it, at most that long (s). Whether they are read. For a program that has
    /// nothing else to do.
    bool loadNow(Seconds timeout);

private:
    struct Mailbox;
    struct Reading;

    void startReading() const;
    void stopReading() const;
    void adopt() const;
    void answerPrompt(CalendarAccess access);

    Ports ports_;
    mutable std::shared_ptr<Mailbox> mailbox_;
    HandlerList<> changes_;
    std::vector<std::function<void(bool)>> waitingForAnswer_;
    // What follows is set up when access is first seen, which a mere question may do.
    mutable std::shared_ptr<const CalendarSnapshot> snapshot_;
    mutable bool checkRequested_ = false;
    // Null while nothing is read.
    mutable std::unique_ptr<Reading> reading_;
    // What was stopped and has not ended yet.
    mutable std::vector<std::unique_ptr<Reading>> ending_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace sunpane
