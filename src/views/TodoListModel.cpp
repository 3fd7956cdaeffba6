#include "views/TodoListModel.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "views/TodoRules.h"

namespace sunpane {
namespace {

QString toQt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

TodoListModel::TodoListModel(const Clock& clock, EventText eventText, QObject* parent)
    : QAbstractListModel(parent), clock_(clock), eventText_(std::move(eventText)) {}

void TodoListModel::show(const std::vector<Todo>& todos) {
    const int before = count();
    removeMissing(todos);
    reorder(todos);
    for (std::size_t i = 0; i < todos.size(); ++i) {
        const auto row = static_cast<int>(i);
        if (i >= todos_.size() || todos_[i].id != todos[i].id) {
            beginInsertRows({}, row, row);
            todos_.insert(todos_.begin() + row, todos[i]);
            endInsertRows();
        } else if (todos_[i] != todos[i]) {
            todos_[i] = todos[i];
            emit dataChanged(index(row), index(row));
        }
    }
    if (count() != before) emit countChanged();
}

void TodoListModel::removeMissing(const std::vector<Todo>& wanted) {
    std::set<Uuid> ids;
    for (const Todo& todo : wanted)
        ids.insert(todo.id);
    for (int row = count() - 1; row >= 0; --row) {
        if (ids.contains(todos_[static_cast<std::size_t>(row)].id)) continue;
        beginRemoveRows({}, row, row);
        todos_.erase(todos_.begin() + row);
        endRemoveRows();
    }
}

// Brings the rows that stay into the order that they have in `wanted`.
void TodoListModel::reorder(const std::vector<Todo>& wanted) {
    std::set<Uuid> here;
    for (const Todo& todo : todos_)
        here.insert(todo.id);
    std::vector<Uuid> order;
    std::map<Uuid, std::size_t> places;
    for (const Todo& todo : wanted) {
        if (!here.contains(todo.id) || !places.emplace(todo.id, order.size()).second) continue;
        order.push_back(todo.id);
    }
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (todos_[i].id == order[i]) continue;
        // One row that went down must not look like all others going up.
        if (todos_[i + 1].id == order[i]) {
            moveRow(i, places.at(todos_[i].id));
            continue;
        }
        const auto from = std::find_if(todos_.begin() + static_cast<std::ptrdiff_t>(i), todos_.end(),
                                       [&](const Todo& todo) { return todo.id == order[i]; });
        moveRow(static_cast<std::size_t>(from - todos_.begin()), i);
    }
}

void TodoListModel::moveRow(std::size_t from, std::size_t to) {
    const auto source = static_cast<int>(from);
    const auto target = static_cast<int>(to);
    beginMoveRows({}, source, source, {}, target > source ? target + 1 : target);
    const auto begin = todos_.begin();
    if (to > from) {
        std::rotate(begin + source, begin + source + 1, begin + target + 1);
    } else {
        std::rotate(begin + target, begin + source, begin + source + 1);
    }
    endMoveRows();
}

void TodoListModel::timePassed() {
    if (!todos_.empty()) emit dataChanged(index(0), index(count() - 1), {eventRole});
}

const Todo* TodoListModel::todo(int row) const {
    return row >= 0 && row < count() ? &todos_[static_cast<std::size_t>(row)] : nullptr;
}

int TodoListModel::rowOf(const QString& id) const {
    const auto wanted = Uuid::parse(id.toStdString());
    if (!wanted) return -1;
    const auto found = std::find_if(todos_.begin(), todos_.end(), [&](const Todo& todo) { return todo.id == *wanted; });
    return found == todos_.end() ? -1 : static_cast<int>(found - todos_.begin());
}

int TodoListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant TodoListModel::data(const QModelIndex& index, int role) const {
    const Todo* row = todo(index.row());
    if (row == nullptr) return {};
    switch (role) {
        case idRole:
            return toQt(row->id.toString());
        case textRole:
            return toQt(row->text);
        case doneRole:
            return row->done;
        case priorityRole:
            return row->isPrio();
        case noteRole:
            return toQt(row->sourceNote().value_or(std::string_view{}));
        case reminderRole:
            return toQt(todo_rules::reminderTooltip(*row, clock_));
        case eventRole:
            return toQt(eventText_(*row));
        case inCalendarRole:
            return row->eventID.has_value();
        case reminderTimeRole:
            return row->remindAt ? row->remindAt->unixTime() : 0.0;
        case reminderRuleRole:
            return toQt(row->remindRepeat.value_or(std::string()));
        default:
            return {};
    }
}

QHash<int, QByteArray> TodoListModel::roleNames() const {
    return {{idRole, "todoId"},
            {textRole, "text"},
            {doneRole, "done"},
            {priorityRole, "priority"},
            {noteRole, "note"},
            {reminderRole, "reminder"},
            {eventRole, "eventHelp"},
            {inCalendarRole, "inCalendar"},
            {reminderTimeRole, "reminderTime"},
            {reminderRuleRole, "reminderRule"}};
}

}  // namespace sunpane
