#include "views/CardListModel.h"

#include <iterator>
#include <utility>

#include "views/InlineMarkdown.h"
#include "views/MeetingText.h"
#include "views/RowDifference.h"

namespace sunpane {

void CardListModel::show(std::vector<Card> next) {
    const auto difference =
        rowDifference(cards_, next, [](const Card& old, const Card& card) { return old.item == card.item; });
    const auto first = static_cast<std::ptrdiff_t>(difference.kept);
    const auto row = static_cast<int>(first);
    if (difference.removed > 0) {
        beginRemoveRows({}, row, row + static_cast<int>(difference.removed) - 1);
        cards_.erase(cards_.begin() + first, cards_.begin() + first + static_cast<std::ptrdiff_t>(difference.removed));
        endRemoveRows();
    }
    if (difference.inserted > 0) {
        beginInsertRows({}, row, row + static_cast<int>(difference.inserted) - 1);
        cards_.insert(cards_.begin() + first, next.begin() + first,
                      next.begin() + first + static_cast<std::ptrdiff_t>(difference.inserted));
        endInsertRows();
    }
    for (std::size_t i = 0; i < cards_.size(); ++i) {
        if (cards_[i] == next[i]) continue;
        cards_[i] = std::move(next[i]);
        const QModelIndex changed = index(static_cast<int>(i));
        emit dataChanged(changed, changed, {priorityRole, clearedRole, joinableRole, imminentRole});
    }
}

const BriefingItem* CardListModel::item(int index) const {
    return index >= 0 && index < rowCount() ? &cards_[static_cast<std::size_t>(index)].item : nullptr;
}

int CardListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(cards_.size());
}

QVariant CardListModel::data(const QModelIndex& index, int role) const {
    if (index.row() < 0 || index.row() >= rowCount()) return {};
    const Card& card = cards_[static_cast<std::size_t>(index.row())];
    switch (role) {
        // Made when a card is drawn: most cards of a long briefing never are.
        case markupRole:
            return QString::fromStdString(rendered(meeting_text::displayMarkdown(card.item.markdown())));
        case spokenRole:
            return QString::fromStdString(plainText(meeting_text::displayMarkdown(card.item.markdown())));
        case keyRole:
            return QString::fromUtf8(card.item.id().data(), static_cast<qsizetype>(card.item.id().size()));
        case priorityRole:
            return card.priority;
        case clearedRole:
            return card.cleared;
        case joinableRole:
            return card.joinable;
        case imminentRole:
            return card.imminent;
        default:
            return {};
    }
}

QHash<int, QByteArray> CardListModel::roleNames() const {
    return {{markupRole, "markup"},   {spokenRole, "spoken"},     {keyRole, "key"},          {priorityRole, "priority"},
            {clearedRole, "cleared"}, {joinableRole, "joinable"}, {imminentRole, "imminent"}};
}

}  // namespace sunpane
