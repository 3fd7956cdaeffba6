#pragma once

#include <QAbstractListModel>
#include <QString>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "base/Clock.h"
#include "core/stores/Todo.h"

namespace sunpane {

/// The rows of the todo column, in the store's order. A change of the list touches only the rows that differ, so a
/// long list keeps its place, its delegates and its motion. What a row says in words is made when it is asked for:
/// only rows on screen are. Owned by TodoColumnPresenter; main thread only.
class TodoListModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        idRole = Qt::UserRole + 1,
        textRole,
        doneRole,
        priorityRole,
        noteRole,
        /// When it reminds; empty without a reminder.
        reminderRole,
        /// What adding it to the calendar would do; empty when there is nothing to add.
        eventRole,
        inCalendarRole,
        /// When it reminds (s since 1970; 0 without a reminder), and the store's word for the repetition.
        reminderTimeRole,
        reminderRuleRole,
    };

    /// What `eventRole` says of a todo.
    using EventText = std::function<std::string(const Todo& todo)>;

    TodoListModel(const Clock& clock, EventText eventText, QObject* parent = nullptr);

    /// Becomes `todos`, by the removals, moves, insertions and changes of single rows that lead there.
    void show(const std::vector<Todo>& todos);
    /// Asks the rows on screen anew for what depends on the time.
    void timePassed();

    const std::vector<Todo>& todos() const { return todos_; }
    /// Null for a row that is not there.
    const Todo* todo(int row) const;
    /// -1 when there is none with that id.
    Q_INVOKABLE int rowOf(const QString& id) const;

    int count() const { return static_cast<int>(todos_.size()); }
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void countChanged();

private:
    void removeMissing(const std::vector<Todo>& wanted);
    void reorder(const std::vector<Todo>& wanted);
    void moveRow(std::size_t from, std::size_t to);

    const Clock& clock_;
    EventText eventText_;
    std::vector<Todo> todos_;
};

}  // namespace sunpane
