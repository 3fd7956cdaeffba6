#include "views/BriefColumnModel.h"

#include <algorithm>
#include <utility>

#include "views/InlineMarkdown.h"

namespace sunpane {
namespace {

QString toQt(const std::string& text) { return QString::fromStdString(text); }

}  // namespace

BriefColumnModel::BriefColumnModel(QObject* parent) : QAbstractListModel(parent) {}

BriefColumnModel::Row BriefColumnModel::makeRow(const BriefingSection& section, bool recap) {
    Row row;
    row.sectionId = section.id;
    row.title = toQt(rendered(section.title));
    row.spokenTitle = toQt(plainText(section.title));
    row.intro = toQt(rendered(section.intro));
    row.itemCount = static_cast<int>(section.items.size());
    row.recap = recap;
    const std::size_t shown = std::min(section.items.size(), maximumItems);
    for (std::size_t i = 0; i < shown; ++i) {
        row.items.append(toQt(rendered(section.items[i].markdown())));
        row.spokenItems.append(toQt(plainText(section.items[i].markdown())));
    }
    return row;
}

void BriefColumnModel::show(const BriefingSection* recap, const std::vector<BriefingSection>& sections) {
    std::vector<Row> next;
    if (recap != nullptr) next.push_back(makeRow(*recap, true));
    const std::size_t shown = std::min(sections.size(), maximumSections);
    for (std::size_t i = 0; i < shown; ++i) next.push_back(makeRow(sections[i], false));

    const std::size_t common = std::min(rows_.size(), next.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (rows_[i] == next[i]) continue;
        rows_[i] = std::move(next[i]);
        const QModelIndex changed = index(static_cast<int>(i));
        emit dataChanged(changed, changed);
    }
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

int BriefColumnModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

QVariant BriefColumnModel::data(const QModelIndex& index, int role) const {
    if (index.row() < 0 || index.row() >= count()) return {};
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
        case sectionIdRole: return row.sectionId;
        case titleRole: return row.title;
        case spokenTitleRole: return row.spokenTitle;
        case introRole: return row.intro;
        case itemsRole: return row.items;
        case spokenItemsRole: return row.spokenItems;
        case itemCountRole: return row.itemCount;
        case recapRole: return row.recap;
        default: return {};
    }
}

QHash<int, QByteArray> BriefColumnModel::roleNames() const {
    return {{sectionIdRole, "sectionId"}, {titleRole, "title"},
            {spokenTitleRole, "spokenTitle"}, {introRole, "intro"},
            {itemsRole, "items"},         {spokenItemsRole, "spokenItems"},
            {itemCountRole, "itemCount"}, {recapRole, "recap"}};
}

}  // namespace sunpane
