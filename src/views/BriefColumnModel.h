#pragma once

#include <QAbstractListModel>
#include <QString>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/Clock.h"
#include "base/Dates.h"
#include "core/briefing/Briefing.h"
#include "core/stores/ItemFlagStore.h"
#include "views/CardListModel.h"

namespace sunpane {

/// The rows of the briefing column: the recap, when there is one, then the sections. A change of the briefing touches
/// only the rows that differ. Main thread only.
class BriefColumnModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(int leftOut READ leftOut NOTIFY leftOutChanged)

public:
    enum Role {
        sectionIdRole = Qt::UserRole + 1,
        titleRole,
        spokenTitleRole,
        introRole,
        spokenIntroRole,
        cardsRole,
        itemCountRole,
        recapRole,
        missedRole,
    };

    explicit BriefColumnModel(QObject* parent = nullptr);

    /// `recap` may be null; `sections` are those to show, of which the first `briefing::maximumShownSections` are.
    /// Hidden cards are left out. Meetings are judged by the clock's time.
    void show(const BriefingSection* recap, const std::vector<BriefingSection>& sections, const ItemFlagStore& flags,
              const Clock& clock);

    /// A shown card by its section's id and its index there; null when there is none.
    const BriefingItem* item(int sectionId, int index) const;

    /// The introduction of a shown section, as markdown; empty when there is none. Valid until the next `show`.
    std::string_view intro(int sectionId) const;

    /// How many sections there are beyond those that are shown.
    int leftOut() const { return leftOut_; }
    int count() const { return static_cast<int>(rows_.size()); }
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void countChanged();
    void leftOutChanged();

private:
    // What a row says of itself; its cards are a model of their own.
    struct Header {
        int sectionId = 0;
        std::string title;
        std::string intro;
        int itemCount = 0;
        bool recap = false;
        friend bool operator==(const Header&, const Header&) = default;
    };
    struct Row {
        Header header;
        std::unique_ptr<CardListModel> cards;
    };
    struct NextRow {
        Header header;
        std::vector<CardListModel::Card> cards;
    };
    struct Context {
        const ItemFlagStore& flags;
        Instant now;
        const LocalCalendar& calendar;
    };

    static CardListModel::Card makeCard(const BriefingItem& item, const Context& context);
    static NextRow makeRow(const BriefingSection& section, bool recap, const Context& context);
    void replaceRows(std::vector<NextRow> next);

    std::vector<Row> rows_;
    int leftOut_ = 0;
};

}  // namespace sunpane
