#include "views/BriefColumnModel.h"

#include <QQmlEngine>
#include <algorithm>
#include <utility>

#include "core/briefing/BriefingLimits.h"
#include "views/BriefSelection.h"
#include "views/InlineMarkdown.h"
#include "views/MeetingText.h"
#include "views/RowDifference.h"

namespace sunpane {
namespace {

QString toQt(const std::string& text) {
    return QString::fromStdString(text);
}

}  // namespace

BriefColumnModel::BriefColumnModel(QObject* parent) : QAbstractListModel(parent) {}

CardListModel::Card BriefColumnModel::makeCard(const BriefingItem& item, const Context& context) {
    const auto join = meeting_text::joinInfo(item.markdown(), context.now, context.calendar);
    return {item, context.flags.isPrio(item.id()), context.flags.isCleared(item.id()), join.has_value(),
            join && join->imminent};
}

BriefColumnModel::NextRow BriefColumnModel::makeRow(const BriefingSection& section, bool recap,
                                                    const Context& context) {
    const auto shown =
        brief_selection::visibleItems(section, [&](std::string_view key) { return context.flags.isHidden(key); });
    NextRow row;
    row.header = {section.id, section.title, section.intro, static_cast<int>(shown.size()), recap};
    const std::size_t count = std::min(shown.size(), briefing::maximumShownCards);
    row.cards.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        row.cards.push_back(makeCard(shown[i], context));
    return row;
}

void BriefColumnModel::replaceRows(std::vector<NextRow> next) {
    const auto difference = rowDifference(rows_, next, [](const Row& row, const NextRow& other) {
        return row.header.sectionId == other.header.sectionId && row.header.recap == other.header.recap;
    });
    const auto first = static_cast<std::ptrdiff_t>(difference.kept);
    const auto row = static_cast<int>(first);
    const int before = count();
    if (difference.removed > 0) {
        beginRemoveRows({}, row, row + static_cast<int>(difference.removed) - 1);
        const auto end = first + static_cast<std::ptrdiff_t>(difference.removed);
        // The views let go of a section's cards later than of the section.
        for (auto gone = rows_.begin() + first; gone != rows_.begin() + end; ++gone)
            gone->cards.release()->deleteLater();
        rows_.erase(rows_.begin() + first, rows_.begin() + end);
        endRemoveRows();
    }
    if (difference.inserted > 0) {
        beginInsertRows({}, row, row + static_cast<int>(difference.inserted) - 1);
        for (std::size_t i = difference.kept; i < difference.kept + difference.inserted; ++i) {
            auto cards = std::make_unique<CardListModel>();
            QQmlEngine::setObjectOwnership(cards.get(), QQmlEngine::CppOwnership);
            cards->show(std::move(next[i].cards));
            rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(i), Row{next[i].header, std::move(cards)});
            next[i].cards.clear();
        }
        endInsertRows();
    }
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const bool isNew = i >= difference.kept && i < difference.kept + difference.inserted;
        if (isNew) continue;
        rows_[i].cards->show(std::move(next[i].cards));
        if (rows_[i].header == next[i].header) continue;
        rows_[i].header = std::move(next[i].header);
        const QModelIndex changed = index(static_cast<int>(i));
        emit dataChanged(changed, changed, {titleRole, spokenTitleRole, introRole, spokenIntroRole, itemCountRole});
    }
    if (count() != before) emit countChanged();
}

void BriefColumnModel::show(const BriefingSection* recap, const std::vector<BriefingSection>& sections,
                            const ItemFlagStore& flags, const Clock& clock) {
    const LocalCalendar calendar(clock);
    const Context context{flags, clock.now(), calendar};
    std::vector<NextRow> next;
    if (recap != nullptr) {
        NextRow row = makeRow(*recap, true, context);
        // Its title stands above the column, so nothing would be left in its box.
        if (!row.cards.empty() || !row.header.intro.empty()) next.push_back(std::move(row));
    }
    const std::size_t shown = std::min(sections.size(), briefing::maximumShownSections);
    for (std::size_t i = 0; i < shown; ++i)
        next.push_back(makeRow(sections[i], false, context));
    const auto leftOut = static_cast<int>(sections.size() - shown);
    if (std::exchange(leftOut_, leftOut) != leftOut) emit leftOutChanged();
    replaceRows(std::move(next));
}

const BriefingItem* BriefColumnModel::item(int sectionId, int index) const {
    for (const Row& row : rows_) {
        if (row.header.sectionId == sectionId) return row.cards->item(index);
    }
    return nullptr;
}

std::string_view BriefColumnModel::intro(int sectionId) const {
    for (const Row& row : rows_) {
        if (row.header.sectionId == sectionId) return row.header.intro;
    }
    return {};
}

int BriefColumnModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant BriefColumnModel::data(const QModelIndex& index, int role) const {
    if (index.row() < 0 || index.row() >= count()) return {};
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
        case sectionIdRole:
            return row.header.sectionId;
        case titleRole:
            return toQt(renderedTitle(row.header.title));
        case spokenTitleRole:
            return toQt(plainText(row.header.title));
        case introRole:
            return toQt(rendered(row.header.intro));
        case spokenIntroRole:
            return toQt(plainText(row.header.intro));
        case cardsRole:
            return QVariant::fromValue<QObject*>(row.cards.get());
        case itemCountRole:
            return row.header.itemCount;
        case recapRole:
            return row.header.recap;
        case missedRole:
            return row.header.sectionId == brief_selection::missedPrioritiesId;
        default:
            return {};
    }
}

QHash<int, QByteArray> BriefColumnModel::roleNames() const {
    return {{sectionIdRole, "sectionId"},
            {titleRole, "title"},
            {spokenTitleRole, "spokenTitle"},
            {introRole, "intro"},
            {spokenIntroRole, "spokenIntro"},
            {cardsRole, "cards"},
            {itemCountRole, "itemCount"},
            {recapRole, "recap"},
            {missedRole, "missed"}};
}

}  // namespace sunpane
