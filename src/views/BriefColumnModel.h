#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <vector>

#include "core/briefing/Briefing.h"
#include "core/stores/ItemFlagStore.h"

namespace sunpane {

/// The rows of the briefing column: the recap, when there is one, then the sections. A change of the briefing touches
/// only the rows that differ. Main thread only.
class BriefColumnModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    /// What a person can use of one briefing; the rest is announced, not drawn.
    static constexpr std::size_t maximumSections = 100;
    static constexpr std::size_t maximumItems = 200;

    enum Role {
        sectionIdRole = Qt::UserRole + 1,
        titleRole,
        spokenTitleRole,
        introRole,
        itemsRole,
        spokenItemsRole,
        flagsRole,
        itemCountRole,
        recapRole,
    };

    explicit BriefColumnModel(QObject* parent = nullptr);

    /// What a card looks like, as bits of the flags role.
    enum Flag { priorityFlag = 1, clearedFlag = 2 };

    /// `recap` may be null; `sections` are those to show. Hidden cards are left out.
    void show(const BriefingSection* recap, const std::vector<BriefingSection>& sections, const ItemFlagStore& flags);

    /// The card at that place of the column as it is shown; null when it is not there any more.
    const BriefingItem* item(int sectionId, int index) const;

    int count() const { return static_cast<int>(rows_.size()); }
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void countChanged();

private:
    struct Row {
        int sectionId = 0;
        QString title;
        QString spokenTitle;
        QString intro;
        QStringList items;
        QStringList spokenItems;
        QVariantList flags;
        int itemCount = 0;
        bool recap = false;
        std::vector<BriefingItem> shown;
        friend bool operator==(const Row&, const Row&) = default;
    };

    static Row makeRow(const BriefingSection& section, bool recap, const ItemFlagStore& flags);
    void replaceRow(int index, Row next);

    std::vector<Row> rows_;
};

}  // namespace sunpane
