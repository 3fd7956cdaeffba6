#include "views/CardPresenter.h"

#include <QClipboard>
#include <QGuiApplication>
#include <string>
#include <utility>

#include "app/CardActions.h"
#include "calendar/JoinLink.h"
#include "views/MeetingText.h"

namespace sunpane {
namespace {

QString toQt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString spoken(ItemSwipeCoordinator::Outcome outcome) {
    using enum ItemSwipeCoordinator::Outcome;
    switch (outcome) {
        case marked:
            return CardPresenter::tr("Marked as a priority");
        case unmarked:
            return CardPresenter::tr("No longer a priority");
        case cleared:
            return CardPresenter::tr("Cleared");
        case removed:
            return CardPresenter::tr("Removed");
    }
    return {};
}

}  // namespace

CardPresenter::CardPresenter(const Collaborators& collaborators, const BriefColumnModel& column)
    : with_(collaborators),
      column_(column),
      coordinator_(with_.scrollSwipes, with_.undo, with_.viewModel.weakFlagStore()),
      spring_(ItemSwipeCoordinator::hoverAnimation),
      self_(std::make_shared<CardPresenter*>(this)) {
    swipeChanges_ = coordinator_.onWillChange([this] { scheduleRefresh(); });
    coordinator_.onOutcome = [this](ItemSwipeCoordinator::Outcome outcome) { emit announced(spoken(outcome)); };
    coordinator_.animate = [this](const Spring& spring, const ItemSwipeCoordinator::Change& change) {
        spring_ = SpringCurve(spring);
        springs_ = true;
        change();
    };
}

void CardPresenter::scheduleRefresh() {
    if (std::exchange(refreshPosted_, true)) return;
    with_.runLoop.post([weak = std::weak_ptr(self_)] {
        if (const auto self = weak.lock()) (*self)->refresh();
    });
}

void CardPresenter::refresh() {
    refreshPosted_ = false;
    inHand_ = !std::exchange(springs_, false);
    emit handChanged();
    const auto& item = coordinator_.hoveredItem();
    swipedKey_ = item ? toQt(item->id()) : QString();
    swipeX_ = coordinator_.swipeX();
    emit swipeChanged();
}

void CardPresenter::setShown(bool shown) {
    if (shown) return coordinator_.install();
    coordinator_.uninstall();
    dragged_.reset();
    if (const auto item = coordinator_.hoveredItem()) coordinator_.pointerLeft(*item);
}

void CardPresenter::pointerEntered(int sectionId, int index) {
    const auto* item = column_.item(sectionId, index);
    if (item != nullptr && !dragged_) coordinator_.pointerEntered(*item);
}

void CardPresenter::pointerLeft(const QString& key) {
    // A copy: the coordinator lets go of its own.
    const auto item = coordinator_.hoveredItem();
    if (item && !dragged_ && toQt(item->id()) == key) coordinator_.pointerLeft(*item);
}

void CardPresenter::cardGone(const QString& key) {
    if (dragged_ && toQt(dragged_->id()) == key) cancelDrag();
    pointerLeft(key);
}

void CardPresenter::dragTo(int sectionId, int index, qreal x) {
    const auto* item = column_.item(sectionId, index);
    if (item == nullptr) return;
    if (!dragged_ || dragged_->id() != item->id()) {
        dragged_ = *item;
        coordinator_.pointerEntered(*item);
        springs_ = false;
    }
    coordinator_.dragTo(x);
}

void CardPresenter::drop() {
    if (const auto item = std::exchange(dragged_, std::nullopt)) coordinator_.finish(*item);
}

void CardPresenter::cancelDrag() {
    if (std::exchange(dragged_, std::nullopt)) coordinator_.cancelDrag();
}

void CardPresenter::swipe(int sectionId, int index, double x) {
    const auto* item = column_.item(sectionId, index);
    if (item == nullptr) return;
    coordinator_.dragTo(x);
    // A copy: acting on the card may take it from the column.
    coordinator_.finish(BriefingItem(*item));
}

void CardPresenter::flag(int sectionId, int index) {
    swipe(sectionId, index, ItemSwipeCoordinator::decisionDistance + 1);
}

void CardPresenter::dismiss(int sectionId, int index) {
    swipe(sectionId, index, -ItemSwipeCoordinator::decisionDistance - 1);
}

QVariantMap CardPresenter::dragData(int sectionId, int index) const {
    const auto* item = column_.item(sectionId, index);
    if (item == nullptr) return {};
    const auto payload = card_actions::dragPayload(*item, with_.viewModel.flagStore());
    return {{QStringLiteral("text/plain"), toQt(item->suggestedTodoText())},
            {QLatin1String(card_actions::dragType), toQt(payload)}};
}

bool CardPresenter::choose(int sectionId, int index) {
    const auto* item = column_.item(sectionId, index);
    if (item == nullptr) return false;
    chosen_ = *item;
    return true;
}

QString CardPresenter::chosenText() const {
    return chosen_ ? toQt(chosen_->suggestedTodoText()) : QString();
}

void CardPresenter::copyChosen() const {
    if (chosen_) QGuiApplication::clipboard()->setText(toQt(card_actions::copyText(*chosen_)));
}

void CardPresenter::addChosenToTodos() {
    if (!chosen_) return;
    emit todoComing();
    card_actions::addToTodos(*chosen_, with_.viewModel.todoStore(), with_.viewModel.flagStore());
}

void CardPresenter::remindOfChosen(double time, const QString& rule) {
    if (!chosen_) return;
    emit todoComing();
    card_actions::setReminder(*chosen_, Instant::fromUnix(time),
                              rule.isEmpty() ? std::nullopt : std::optional(rule.toStdString()),
                              with_.viewModel.todoStore(), with_.viewModel.flagStore());
}

std::vector<InlineLink> CardPresenter::linksIn(int sectionId, int index) const {
    if (index == introduction) return linksOf(column_.intro(sectionId));
    const auto* item = column_.item(sectionId, index);
    return item != nullptr ? linksOf(meeting_text::displayMarkdown(item->markdown())) : std::vector<InlineLink>();
}

QStringList CardPresenter::links(int sectionId, int index) const {
    QStringList labels;
    for (const auto& link : linksIn(sectionId, index))
        labels.append(toQt(link.label));
    return labels;
}

void CardPresenter::openLink(int sectionId, int index, int link) const {
    const auto links = linksIn(sectionId, index);
    if (link >= 0 && static_cast<std::size_t>(link) < links.size())
        with_.workspace.openUrl(links[static_cast<std::size_t>(link)].url);
}

void CardPresenter::join(int sectionId, int index) const {
    const auto* item = column_.item(sectionId, index);
    if (item == nullptr) return;
    if (const auto url = joinURL(item->markdown())) with_.workspace.openUrl(*url);
}

}  // namespace sunpane
