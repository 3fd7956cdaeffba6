#include "views/PanelPresenter.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "base/Dates.h"
#include "views/BriefSelection.h"
#include "views/InlineMarkdown.h"
#include "views/MeetingText.h"
#include "views/PanelLayout.h"

namespace sunpane {

PanelPresenter::PanelPresenter(const Collaborators& collaborators, const Measures& measures)
    : with_(collaborators),
      measures_(measures),
      nowPlaying_(collaborators.nowPlaying, collaborators.runLoop),
      reminders_(collaborators.clock),
      todos_({collaborators.viewModel, collaborators.calendar, NotchUndo::shared(), collaborators.runLoop,
              collaborators.clock, collaborators.notifications, collaborators.scrollSwipes}),
      cards_({with_.viewModel, with_.scrollSwipes, NotchUndo::shared(), with_.runLoop, with_.workspace}, column_),
      self_(std::make_shared<PanelPresenter*>(this)) {
    modelChanges_ = with_.viewModel.onWillChange([this] { scheduleRefresh(); });
    flagChanges_ = with_.viewModel.flagStore().onWillChange([this] { scheduleRefresh(); });
    meetingChanges_ = with_.meetings.onWillChange([this] { scheduleRefresh(); });
    motionChanges_ = with_.motion.onChange([this] { scheduleRefresh(); });
    // The strip of what plays and the todos make the panel higher.
    connect(&nowPlaying_, &NowPlayingPresenter::changed, this, &PanelPresenter::changed);
    connect(&cards_, &CardPresenter::todoComing, &todos_, &TodoColumnPresenter::makeRoom);
    connect(todos_.list(), &TodoListModel::countChanged, this, &PanelPresenter::changed);
    refresh();
}

// A panel that goes with its menu open leaves nothing behind that keeps the next one from folding.
PanelPresenter::~PanelPresenter() {
    with_.viewModel.setReminderUIOpen(with_.viewModel.reminderUIOpen() - openMenus_);
}

void PanelPresenter::setMeasures(const Measures& measures) {
    if (measures == measures_) return;
    measures_ = measures;
    emit measuresChanged();
    emit changed();
}

void PanelPresenter::scheduleRefresh() {
    // A change is announced before it takes effect; by the time the posted task runs it is in place.
    if (std::exchange(refreshPosted_, true)) return;
    with_.runLoop.post([weak = std::weak_ptr(self_)] {
        if (const auto self = weak.lock()) (*self)->refresh();
    });
}

void PanelPresenter::refresh() {
    refreshPosted_ = false;
    judgeMotion();  // before anything begins to move
    showBriefing(with_.viewModel.current());
    showColumn();
    showMeeting();
    if (std::exchange(ticking_, expanded()) != expanded()) {
        clockTimer_ = expanded() ? with_.runLoop.every(clockInterval, [this] { refresh(); }) : Subscription();
        cards_.setShown(expanded());
    }
    emit changed();
}

void PanelPresenter::showBriefing(const Briefing* briefing) {
    if (briefing == nullptr) {
        shown_.reset();
        sections_.clear();
        briefingId_.clear();
        title_ = QString::fromUtf8(Briefing::defaultTitle.data(), static_cast<int>(Briefing::defaultTitle.size()));
        subtitle_.clear();
        icon_ = QStringLiteral("sun.max.fill");
        return;
    }
    if (shown_ != *briefing) {
        shown_ = *briefing;
        sections_ = briefing->sections();
        briefingId_ = QString::fromStdString(briefing->id);
        const BriefingSection* recap = brief_selection::recapSection(sections_);
        title_ =
            QString::fromStdString(plainText(recap != nullptr ? brief_selection::recapTitle(*recap) : briefing->title));
        icon_ = recap != nullptr ? QStringLiteral("moon.stars.fill") : QStringLiteral("sun.max.fill");
    }
    subtitle_ = QString::fromStdString(briefing->dateLabel(LocalCalendar(with_.clock)));
}

bool PanelPresenter::isHidden(const BriefingItem& item) const {
    return with_.viewModel.flagStore().isHidden(std::string(item.id()));
}

void PanelPresenter::showColumn() {
    auto visible = brief_selection::visibleSections(
        sections_, [this](std::string_view key) { return with_.viewModel.flagStore().isHidden(std::string(key)); });
    if (shown_ && LocalCalendar(with_.clock).isSameDay(shown_->date, with_.clock.now())) {
        if (auto missed = brief_selection::droppedPrioSection(sections_, with_.viewModel.flagStore().state().prio))
            visible.push_back(*std::move(missed));
    }
    column_.show(brief_selection::recapSection(sections_), visible, with_.viewModel.flagStore(), with_.clock);
    hidden_.clear();
    for (const auto& section : sections_) {
        std::copy_if(section.items.begin(), section.items.end(), std::back_inserter(hidden_),
                     [this](const BriefingItem& item) { return isHidden(item); });
    }
}

void PanelPresenter::showMeeting() {
    meeting_ = with_.meetings.next();
    if (!meeting_) return;  // what was shown of it stays while it leaves the screen
    const Instant now = with_.clock.now();
    meetingTitle_ = QString::fromStdString(meeting_->title);
    meetingTime_ = QString::fromStdString(meeting_text::timeLine(*meeting_, now, LocalCalendar(with_.clock)));
    meetingImminent_ = meeting_text::isImminent(meeting_->start, now);
}

void PanelPresenter::judgeMotion() {
    const bool reduced = with_.defaults.read<bool>(reduceMotionKey).valueOr(with_.motion.isReduced());
    if (std::exchange(reducedMotion_, reduced) != reduced) emit reducedMotionChanged();
}

void PanelPresenter::joinMeeting() {
    if (canJoinMeeting()) with_.workspace.openUrl(*meeting_->joinURL);
}

void PanelPresenter::openBriefingsFolder() {
    with_.workspace.revealFolder(FolderBriefingProvider::currentDirectory(with_.defaults));
}

void PanelPresenter::setMenuOpen(bool open) {
    if (!open && openMenus_ == 0) return;
    const int change = open ? 1 : -1;
    openMenus_ += change;
    with_.viewModel.setReminderUIOpen(with_.viewModel.reminderUIOpen() + change);
}

void PanelPresenter::showHiddenCards() {
    const auto hidden = hidden_;
    for (const auto& item : hidden)
        with_.viewModel.flagStore().unhide(item);
}

qreal PanelPresenter::headerHeight() {
    return panel_layout::headerHeight;
}

qreal PanelPresenter::expandedHeight() const {
    panel_layout::Content content;
    content.notchHeight = measures_.notch.height;
    content.maxCardHeight = measures_.maxCardHeight;
    content.todos = with_.viewModel.todoStore().todos().size();
    content.hasTrack = nowPlaying_.hasTrack();
    content.hasNextMeeting = meeting_.has_value();
    content.hasSections = !sections_.empty();
    content.briefContentHeight = with_.viewModel.briefContentHeight();
    return panel_layout::expandedHeight(content);
}

void PanelPresenter::toggleSection(int id) {
    openSection_ = openSection_ == id ? std::nullopt : std::optional(id);
    emit openSectionChanged();
}

}  // namespace sunpane
