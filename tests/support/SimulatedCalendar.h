#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/HandlerList.h"
#include "platform/CalendarStore.h"

namespace sunpane::testing {

/// Calendars that a test fills, and a user who answers the question for access when the test says so.
class SimulatedCalendar : public CalendarStore {
public:
    CalendarAccess access() const override { return status; }
    void requestFullAccess(std::function<void(bool)> answer) override {
        ++questions;
        question_ = std::move(answer);
    }
    bool loaded() const override { return isLoaded; }
    std::vector<std::string> unread() const override { return missing; }
    std::vector<CalendarEvent> events(Instant from, Instant to) const override {
        if (status != CalendarAccess::full || !isLoaded) return {};
        std::vector<CalendarEvent> found;
        std::copy_if(all.begin(), all.end(), std::back_inserter(found), [&](const CalendarEvent& event) {
            return event.start.value_or(from) < to && event.end.value_or(to) > from;
        });
        return found;
    }
    std::vector<CalendarInfo> calendars() const override { return known; }
    void add(const NewEvent& event, std::function<void(std::optional<std::string>)> done) override {
        added.push_back(event);
        done(identifierOfNew);
    }
    Subscription observeChanges(std::function<void()> handler) override { return observers_.add(std::move(handler)); }

    /// The user answers; the state follows.
    void answer(bool granted) {
        status = granted ? CalendarAccess::full : CalendarAccess::denied;
        std::exchange(question_, nullptr)(granted);
    }
    /// The desktop loses the question.
    void swallowQuestion() { std::exchange(question_, nullptr)(false); }
    /// Whether the question is on screen.
    bool isAsked() const { return static_cast<bool>(question_); }
    void change() { observers_.call(); }

    CalendarAccess status = CalendarAccess::full;
    bool isLoaded = true;
    std::vector<std::string> missing;
    std::vector<CalendarEvent> all;
    std::vector<CalendarInfo> known;
    int questions = 0;
    std::vector<NewEvent> added;
    std::optional<std::string> identifierOfNew = "new-event";

private:
    std::function<void(bool)> question_;
    HandlerList<> observers_;
};

/// A timed event of half an hour without guests, in no calendar.
inline CalendarEvent timedEvent(std::string title, Instant start, Seconds length = 1800) {
    CalendarEvent event;
    event.identifier = "event-" + title;
    event.title = std::move(title);
    event.start = start;
    event.end = start + length;
    return event;
}

}  // namespace sunpane::testing
