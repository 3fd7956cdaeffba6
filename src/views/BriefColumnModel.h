#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QStringList>
#include <vector>

#include "core/briefing/Briefing.h"

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
        itemCountRole,
        recapRole,
    };

    explicit BriefColumnModel(QObject* parent = nullptr);

    void show(const BriefingSection* recap, const std::vector<BriefingSection>& sections);

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
        int itemCount = 0;
        bool recap = false;
        friend bool operator==(const Row&, const Row&) = default;
    };

    static Row makeRow(const BriefingSection& section, bool recap);

    std::vector<Row> rows_;
};

}  // namespace sunpane
