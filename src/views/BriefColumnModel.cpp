#include "views/BriefColumnModel.h"

#include <algorithm>
#include <utility>

#include "views/BriefSelection.h"
#include "views/InlineMarkdown.h"
#include "views/MeetingText.h"

namespace sunpane {
namespace {

QString toQt(const std::string& text) {
    return QString::fromStdString(text);
}

}  // namespace

BriefColumnModel::BriefColumnModel(QObject* parent) : QAbstractListModel(parent) {}

int BriefColumnModel::flagsOf(const BriefingItem& item, const Context& context) {
    const std::string key(item.id());
    int flags = context.flags.isPrio(key) ? priorityFlag : 0;
    if (context.flags.isCleared(key)) flags |= clearedFlag;
    if (const auto join = meeting_text::joinInfo(item.markdown(), context.now, context.calendar)) {
        flags |= joinableFlag | (join->imminent ? imminentFlag : 0);
    }
    return flags;
}

BriefColumnModel::Row BriefColumnModel::makeRow(const BriefingSection& section, bool recap, const Context& context) {
    Row row;
    row.sectionId = section.id;
    row.title = toQt(rendered(section.title));
    row.spokenTitle = toQt(plainText(section.title));
    row.intro = toQt(rendered(section.intro));
    row.recap = recap;
    row.shown = brief_selection::visibleItems(
        section, [&](std::string_view key) { return context.flags.isHidden(std::string(key)); });
    row.itemCount = static_cast<int>(row.shown.size());
    if (row.shown.size() > maximumItems) row.shown.erase(row.shown.begin() + maximumItems, row.shown.end());
    for (const BriefingItem& item : row.shown) {
        const std::string markdown = meeting_text::displayMarkdown(item.markdown());
        row.items.append(toQt(rendered(markdown)));
        row.spokenItems.append(toQt(plainText(markdown)));
        row.flags.append(flagsOf(item, context));
    }
    return row;
}

void BriefColumnModel::replaceRow(int index, Row next) {
    Row& row = rows_[static_cast<std::size_t>(index)];
    if (row == next) return;
    // A flag alone must not make the cards anew: one of them may have the keyboard.
    QVariantList nextFlags = std::exchange(next.flags, row.flags);
    const bool onlyFlags = row == next;
    row = std::move(next);
    row.flags = std::move(nextFlags);
    const QModelIndex changed = this->index(index);
    emit dataChanged(changed, changed, onlyFlags ? QList<int>{flagsRole} : QList<int>{});
}

void BriefColumnModel::show(const BriefingSection* recap, const std::vector<BriefingSection>& sections,
                            const ItemFlagStore& flags, const Clock& clock) {
    const LocalCalendar calendar(clock);
    const Context context{flags, clock.now(), calendar};
    std::vector<Row> next;
    if (recap != nullptr) next.push_back(makeRow(*recap, true, context));
    const std::size_t shown = std::min(sections.size(), maximumSections);
    for (std::size_t i = 0; i < shown; ++i)
        next.push_back(makeRow(sections[i], false, context));

    const auto leftOut = static_cast<int>(sections.size() - shown);
    if (std::exchange(leftOut_, leftOut) != leftOut) emit leftOutChanged();

    const std::size_t common = std::min(rows_.size(), next.size());
    for (std::size_t i = 0; i < common; ++i)
        replaceRow(static_cast<int>(i), std::move(next[i]));
    const auto first = static_cast<int>(common);
    if (next.size() > common) {
        beginInsertRows({}, first, static_cast<int>(next.size()) - 1);
        rows_.insert(rows_.end(), std::make_move_iterator(next.begin() + first), std::make_move_iterator(next.end()));
        endInsertRows();
        emit countChanged();
    } else if (rows_.size() > common) {
        beginRemoveRows({}, first, static_cast<int>(rows_.size()) - 1);
        rows_.erase(rows_.begin() + first, rows_.end());
        endRemoveRows();
        emit countChanged();
    }
}

const BriefingItem* BriefColumnModel::item(int sectionId, int index) const {
    for (const Row& row : rows_) {
        if (row.sectionId != sectionId) continue;
        return index >= 0 && index < static_cast<int>(row.shown.size()) ? &row.shown[static_cast<std::size_t>(index)]
                                                                        : nullptr;
    }
    return nullptr;
}

int BriefColumnModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant BriefColumnModel::data(const QModelIndex& index, int role) const {
    if (index.row() < 0 || index.row() >= count()) return {};
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
        case sectionIdRole:
            return row.sectionId;
        case titleRole:
            return row.title;
        case spokenTitleRole:
            return row.spokenTitle;
        case introRole:
            return row.intro;
        case itemsRole:
            return row.items;
        case spokenItemsRole:
            return row.spokenItems;
        case flagsRole:
            return row.flags;
        case itemCountRole:
            return row.itemCount;
        case recapRole:
            return row.recap;
        case missedRole:
            return row.sectionId == brief_selection::missedPrioritiesId;
        default:
            return {};
    }
}

QHash<int, QByteArray> BriefColumnModel::roleNames() const {
    return {{sectionIdRole, "sectionId"}, {titleRole, "title"},         {spokenTitleRole, "spokenTitle"},
            {introRole, "intro"},         {itemsRole, "items"},         {spokenItemsRole, "spokenItems"},
            {flagsRole, "flags"},         {itemCountRole, "itemCount"}, {recapRole, "recap"},
            {missedRole, "missed"}};
}

}  // namespace sunpane
