#include "views/TodoListModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "support/SimulatedPlatform.h"

namespace sunpane {
namespace {

/// A view that knows the model by its announcements alone, and counts them.
class View {
public:
    explicit View(TodoListModel& model) : model_(model) {
        QObject::connect(&model, &QAbstractItemModel::rowsInserted, &context_,
                         [this](const auto&, int first, int last) {
                             ++inserted;
                             for (int row = first; row <= last; ++row)
                                 rows.insert(rows.begin() + row, read(row));
                         });
        QObject::connect(&model, &QAbstractItemModel::rowsRemoved, &context_, [this](const auto&, int first, int last) {
            ++removed;
            rows.erase(rows.begin() + first, rows.begin() + last + 1);
        });
        QObject::connect(&model, &QAbstractItemModel::rowsMoved, &context_,
                         [this](const auto&, int from, int, const auto&, int before) {
                             ++moved;
                             const QString row = rows[static_cast<std::size_t>(from)];
                             rows.erase(rows.begin() + from);
                             rows.insert(rows.begin() + (before > from ? before - 1 : before), row);
                         });
        QObject::connect(&model, &QAbstractItemModel::dataChanged, &context_,
                         [this](const auto& first, const auto& last) {
                             ++changed;
                             for (int row = first.row(); row <= last.row(); ++row)
                                 rows[static_cast<std::size_t>(row)] = read(row);
                         });
        QObject::connect(&model, &QAbstractItemModel::modelReset, &context_, [] { ADD_FAILURE() << "made anew"; });
    }

    /// What was announced since the last question: inserted, removed, moved, changed.
    std::vector<int> counts() {
        return {std::exchange(inserted, 0), std::exchange(removed, 0), std::exchange(moved, 0),
                std::exchange(changed, 0)};
    }
    bool isInStep() const {
        if (static_cast<int>(rows.size()) != model_.rowCount()) return false;
        for (int row = 0; row < model_.rowCount(); ++row) {
            if (rows[static_cast<std::size_t>(row)] != read(row)) return false;
        }
        return true;
    }

private:
    QString read(int row) const {
        const auto at = model_.index(row);
        return model_.data(at, TodoListModel::idRole).toString() + model_.data(at, TodoListModel::textRole).toString();
    }

    TodoListModel& model_;
    QObject context_;
    std::vector<QString> rows;
    int inserted = 0, removed = 0, moved = 0, changed = 0;
};

struct TodoListModelTest : ::testing::Test {
    testing::SimulatedPlatform platform;
    TodoListModel model{platform.clock, [](const Todo&) { return std::string(); }};
    View view{model};
    std::vector<Todo> todos;

    void SetUp() override {
        for (int i = 0; i < 1000; ++i)
            todos.push_back(Todo::make("todo " + std::to_string(i), platform.clock.now()));
        model.show(todos);
        view.counts();
    }
    std::vector<int> show() {
        model.show(todos);
        EXPECT_TRUE(view.isInStep());
        EXPECT_EQ(model.todos(), todos);
        return view.counts();
    }
};

TEST_F(TodoListModelTest, OneChangeTouchesOneRow) {
    using Counts = std::vector<int>;
    EXPECT_EQ(show(), (Counts{0, 0, 0, 0}));
    todos.insert(todos.begin() + 400, Todo::make("new", platform.clock.now()));
    EXPECT_EQ(show(), (Counts{1, 0, 0, 0}));
    todos.erase(todos.begin() + 3);
    EXPECT_EQ(show(), (Counts{0, 1, 0, 0}));
    todos[7].text = "renamed";
    EXPECT_EQ(show(), (Counts{0, 0, 0, 1}));
    std::rotate(todos.begin() + 5, todos.begin() + 6, todos.end());  // to the end, as when it is ticked
    EXPECT_EQ(show(), (Counts{0, 0, 1, 0}));
    std::rotate(todos.begin(), todos.begin() + 600, todos.begin() + 601);  // and to the top
    todos.front().prio = true;
    EXPECT_EQ(show(), (Counts{0, 0, 1, 1}));
}

TEST_F(TodoListModelTest, AnyListBecomesAnyOther) {
    std::mt19937 random(20261123);
    for (int round = 0; round < 200; ++round) {
        std::shuffle(todos.begin(), todos.end(), random);
        todos.erase(todos.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(random() % 12, todos.size())),
                    todos.end());
        for (std::size_t added = random() % 6; added > 0; --added)
            todos.push_back(Todo::make("fresh", platform.clock.now()));
        if (!todos.empty()) todos.front().done = !todos.front().done;
        show();
    }
}

}  // namespace
}  // namespace sunpane
