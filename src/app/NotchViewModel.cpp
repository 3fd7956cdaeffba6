#include "app/NotchViewModel.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "app/PanelBriefing.h"
#include "base/Dates.h"

namespace sunpane {

NotchViewModel::NotchViewModel(const Collaborators& collaborators)
    : with_(collaborators),
      storesFolder_(FolderBriefingProvider::currentDirectory(with_.defaults)),
      captureDraft_(with_.storeFiles),
      todoStore_(with_.storeFiles, storesFolder_),
      flagStore_(std::make_shared<ItemFlagStore>(with_.storeFiles, storesFolder_)),
      flagsSettled_(with_.runLoop, storeDebounce, [this] { recomputeUntouched(); }),
      todosSettled_(with_.runLoop, storeDebounce, [this] { pushReminders(); }),
      self_(std::make_shared<NotchViewModel*>(this)) {}

NotchViewModel::~NotchViewModel() {
    if (provider_) provider_->stop();
    with_.calendar.isDismissedTodo = nullptr;
    with_.calendar.onChange = nullptr;
}

void NotchViewModel::postToMain(std::function<void(NotchViewModel&)> task) {
    with_.runLoop.post([weak = std::weak_ptr(self_), task = std::move(task)] {
        if (const auto self = weak.lock()) task(**self);
    });
}

void NotchViewModel::start() {
    watchStores();
    followCalendar();
    observers_.push_back(with_.notifications.observe(notification::collapseNotch, [this](const auto&) {
        postToMain([](NotchViewModel& model) {
            model.suppressExpandUntil_ = model.with_.clock.now() + suppressAfterCollapse;
            model.setExpanded(false);
        });
    }));
    observers_.push_back(with_.notifications.observe(notification::revealTodo, [this](const auto& object) {
        const auto todoID = object ? Uuid::parse(*object) : std::nullopt;
        postToMain([todoID](NotchViewModel& model) { model.reveal(todoID); });
    }));
    startProvider();
    observers_.push_back(with_.notifications.observe(notification::briefingsFolderChanged, [this](const auto&) {
        postToMain([](NotchViewModel& model) { model.startProvider(); });
    }));
}

void NotchViewModel::watchStores() {
    observers_.push_back(flagStore_->onWillChange([this] { flagsSettled_.trigger(); }));
    observers_.push_back(todoStore_.onWillChange([this] { todosSettled_.trigger(); }));
    // The agent is to know the reminders that are there at the start, too.
    todosSettled_.trigger();
    // Keeps a card's flag in step with the star of the todo that was made from it.
    todoStore_.onPrioChanged = [this](const Todo& todo) {
        if (todo.sourceItemKey) flagStore_->setPrio(*todo.sourceItemKey, todo.text, todo.isPrio());
    };
}

void NotchViewModel::followCalendar() {
    with_.calendar.isDismissedTodo = [this](const std::string& title) { return todoStore_.isDismissed(title); };
    with_.calendar.onChange = [this] { reapply(); };
}

void NotchViewModel::reveal(std::optional<Uuid> todoID) {
    keepOpenUntil_ = with_.clock.now() + keepOpenAfterReveal;
    setExpanded(true);
    setHighlight(todoID);
    highlightEnd_ = with_.runLoop.after(highlightDuration, [this] { setHighlight(std::nullopt); });
}

void NotchViewModel::setHighlight(std::optional<Uuid> todoID) {
    if (todoID == highlightTodoID_) return;
    announceChange();
    highlightTodoID_ = todoID;
}

void NotchViewModel::startProvider() {
    const auto cleanUp = [this] {
        FolderBriefingProvider::cleanupOldBriefings(FolderBriefingProvider::currentDirectory(with_.defaults), keptDays,
                                                    with_.clock);
    };
    cleanUp();
    cleanupTimer_ = with_.runLoop.every(cleanupInterval, cleanUp);

    if (provider_) provider_->stop();
    provider_ = std::make_unique<FolderBriefingProvider>(FolderBriefingProvider::currentDirectory(with_.defaults),
                                                         with_.provider);

    // So that "today" follows the clock without a new file.
    rolloverTimer_ = with_.runLoop.every(rolloverInterval, [this] { reapply(); });

    // The handler runs on the provider's queue: all it touches is the main loop and a weak reference.
    provider_->start([&runLoop = with_.runLoop, weak = std::weak_ptr(self_)](std::vector<Briefing> items) {
        std::for_each(items.begin(), items.end(), limitToPanel);
        runLoop.post([weak, items = std::move(items)]() mutable {
            const auto self = weak.lock();
            if (!self) return;
            (*self)->lastProviderItems_ = std::move(items);
            (*self)->apply((*self)->lastProviderItems_);
        });
    });
}

void NotchViewModel::reapply() {
    postToMain([](NotchViewModel& model) { model.apply(model.lastProviderItems_); });
}

void NotchViewModel::apply(std::vector<Briefing> items) {
    std::stable_sort(items.begin(), items.end(), [](const Briefing& a, const Briefing& b) { return a.date > b.date; });
    const LocalCalendar calendar(with_.clock);
    const Instant now = with_.clock.now();
    const bool isForToday = std::any_of(
        items.begin(), items.end(), [&](const Briefing& briefing) { return calendar.isSameDay(briefing.date, now); });
    // An older list that waits for the user's answer is void.
    if (isForToday) {
        awaitingAccess_.reset();
        publish(std::move(items));
        return;
    }
    awaitingAccess_ = std::move(items);
    if (with_.calendar.isUndecided() && std::exchange(isAskingForAccess_, true)) return;
    with_.calendar.ensureAccess([weak = std::weak_ptr(self_)](bool granted) {
        if (const auto self = weak.lock()) (*self)->applyWithSchedule(granted);
    });
}

void NotchViewModel::applyWithSchedule(bool granted) {
    isAskingForAccess_ = false;
    auto waiting = std::exchange(awaitingAccess_, std::nullopt);
    if (!waiting) return;
    std::vector<Briefing> items = std::move(*waiting);
    if (granted) {
        if (auto schedule = with_.calendar.todayBriefing()) {
            limitToPanel(*schedule);
            items.insert(items.begin(), std::move(*schedule));
        }
    }
    if (with_.calendar.isLoading()) {
        show(std::move(items));
    } else {
        publish(std::move(items));
    }
}

void NotchViewModel::show(std::vector<Briefing> items) {
    updateUnread(items.empty() ? nullptr : &items.front());
    announceChange();
    briefings_ = std::move(items);
    currentIndex_ = 0;
    isNewestKnown_ = false;
}

void NotchViewModel::publish(std::vector<Briefing> items) {
    show(std::move(items));
    isNewestKnown_ = true;
    if (!briefings_.empty()) todoStore_.ingest(briefings_.front());
    todoStore_.importCalendarTodos(with_.calendar.todayCalendarTodoTitles());
    refreshPrioReferences();
    recomputeUntouched();
}

void NotchViewModel::refreshPrioReferences() {
    std::vector<std::string> texts;
    for (const auto& todo : todoStore_.todos()) {
        if (!todo.done) texts.push_back(todo.text);
    }
    for (auto& title : with_.calendar.todayEventTitles())
        texts.push_back(std::move(title));
    flagStore_->refreshPrioReferences(texts);
}

void NotchViewModel::recomputeUntouched() {
    if (!isNewestKnown_) return;
    std::vector<std::string> untouched;
    // The agent did not write the calendar's schedule, so it learns nothing from what is left untouched there.
    if (!briefings_.empty() && briefings_.front().id != CalendarFallback::briefingID) {
        // The newest briefing counts, whichever is on screen.
        for (const auto& section : briefings_.front().sections()) {
            for (const auto& item : section.items) {
                if (untouched.size() == maximumUntouched) break;
                const std::string key(item.id());
                if (flagStore_->isPrio(key) || flagStore_->isCleared(key)) continue;
                untouched.emplace_back(item.markdown());
            }
        }
    }
    flagStore_->updateUntouched(untouched);
}

void NotchViewModel::pushReminders() {
    const LocalCalendar calendar(with_.clock);
    std::vector<std::string> lines;
    for (const auto& todo : todoStore_.todos()) {
        if (todo.done || !todo.remindAt) continue;
        std::string line = todo.text + " — reminder set for " + calendar.format(*todo.remindAt, "yyyy-MM-dd HH:mm");
        if (todo.remindRepeat) line += " (repeats " + *todo.remindRepeat + ")";
        lines.push_back(std::move(line));
    }
    flagStore_->updateReminders(lines);
}

void NotchViewModel::updateUnread(const Briefing* newest) {
    std::optional<std::size_t> hash;
    if (newest != nullptr) {
        const std::hash<std::string> hashOf;
        hash = hashOf(newest->id) ^ hashOf(newest->markdown);
    }
    const bool wasWithoutCalendar = std::exchange(chosenWithoutCalendar_, with_.calendar.isLoading());
    if (hash == lastNewestHash_) return;
    const bool isFirst =
        !lastNewestHash_ || (wasWithoutCalendar && newest && newest->id == CalendarFallback::briefingID);
    lastNewestHash_ = hash;
    if (hash && isFirst) return;
    announceChange();
    hasUnread_ = hash.has_value();
}

void NotchViewModel::setExpanded(bool expanded) {
    announceChange();
    expanded_ = expanded;
    if (expanded) hasUnread_ = false;
    with_.meetings.setActive(expanded);
    with_.nowPlaying.setActive(expanded);
}

bool NotchViewModel::holds(Instant until, Seconds longest) const {
    // An instant counts seconds in the hundreds of millions, so that a difference is off by a fraction of a
    // microsecond.
    constexpr Seconds rounding = 0.001;
    const Seconds left = until - with_.clock.now();
    return left >= 0 && left <= longest + rounding;
}

const Briefing* NotchViewModel::current() const {
    return currentIndex_ < briefings_.size() ? &briefings_[currentIndex_] : nullptr;
}

void NotchViewModel::older() {
    if (!canGoOlder()) return;
    announceChange();
    ++currentIndex_;
}

void NotchViewModel::newer() {
    if (!canGoNewer()) return;
    announceChange();
    --currentIndex_;
}

void NotchViewModel::setReminderUIOpen(int count) {
    announceChange();
    reminderUIOpen_ = std::max(count, 0);
}

bool NotchViewModel::reportBriefContentHeight(double height) {
    const double measured = std::max(height, 1.0);
    if (std::abs(briefContentHeight_ - measured) <= 0.5) return false;
    postToMain([measured](NotchViewModel& model) {
        model.announceChange();
        model.briefContentHeight_ = measured;
    });
    return true;
}

}  // namespace sunpane
