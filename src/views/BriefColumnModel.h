#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <vector>

#include "base/Clock.h"
#include "base/Dates.h"
#include "core/briefing/Briefing.h"
#include "core/stores/ItemFlagStore.h"

namespace sunpane {

/// The rows of the briefing column: the recap, when there is one, then the sections. A change of the briefing touches
/// only the rows that differ. Main thread only.
class BriefColumnModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(int leftOut READ leftOut NOTIFY leftOutChanged)

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
        missedRole,
    };

    explicit BriefColumnModel(QObject* parent = nullptr);

    /// What a card looks like, as bits of the flags role.
    enum Flag { priorityFlag = 1, clearedFlag = 2, joinableFlag = 4, imminentFlag = 8 };

    /// `recap` may be null; `sections` are those to show, of which the first `maximumSections` are. Hidden cards are
    /// left out.
    /// Meetings are judged by the clock's time.
    void show(const BriefingSection* recap, const std::vector<BriefingSection>& sections, const ItemFlagStore& flags,
              const Clock& clock);

    /// The card at that place of the column as it is shown; null when it is not there any more.
    const BriefingItem* item(int sectionId, int index) const;

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

    struct Context {
        const ItemFlagStore& flags;
        Instant now;
        const LocalCalendar& calendar;
    };

    static int flagsOf(const BriefingItem& item, const Context& context);
    static Row makeRow(const BriefingSection& section, bool recap, const Context& context);
    void replaceRow(int index, Row next);

    std::vector<Row> rows_;
    int leftOut_ = 0;
};

}  // namespace sunpane
