#pragma once

#include <QAbstractListModel>
#include <vector>

#include "core/briefing/Briefing.h"

namespace sunpane {

/// The cards of one section. A change touches only the cards that differ: one of them may have the keyboard. Owned by
/// the column's model; main thread only.
class CardListModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        markupRole = Qt::UserRole + 1,
        spokenRole,
        keyRole,
        priorityRole,
        clearedRole,
        joinableRole,
        imminentRole,
    };

    struct Card {
        BriefingItem item;
        bool priority = false;
        bool cleared = false;
        bool joinable = false;
        bool imminent = false;
        friend bool operator==(const Card&, const Card&) = default;
    };

    using QAbstractListModel::QAbstractListModel;

    void show(std::vector<Card> cards);
    /// Null for an index beyond the last card.
    const BriefingItem* item(int index) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    std::vector<Card> cards_;
};

}  // namespace sunpane
