#include "views/TodoColumnPresenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ViewModelFixture.h"
#include "views/TodoRules.h"

namespace sunpane {
namespace {

using ::testing::ElementsAre;
using enum ScrollPhase;

struct TodoColumnPresenterTest : testing::ViewModelFixture {
    std::optional<TodoColumnPresenter> column;
    std::vector<std::string> posted;
    std::vector<Subscription> observers;

    void SetUp() override {
        column.emplace(TodoColumnPresenter::Collaborators{*model, agenda.fallback, undo, platform.runLoop,
                                                          platform.clock, notifications, hub});
        for (const char* name : {notification::collapseNotch, notification::makeNotchKey})
            observers.push_back(notifications.observe(name, [this, name](const auto&) { posted.emplace_back(name); }));
        for (const char* text : {"a", "b", "c"})
            todos().add(text);
        platform.time.runPending();
    }
    TodoStore& todos() { return model->todoStore(); }
    QString id(std::size_t row) { return QString::fromStdString(todos().todos().at(row).id.toString()); }
    std::string order() {
        std::string texts;
        for (const Todo& todo : todos().todos())
            texts += todo.text + (todo.isPrio() ? "!" : "") + (todo.done ? "." : "");
        return texts;
    }
    bool scroll(ScrollPhase phase, double x = 0, double y = 0) { return pointer.scroll({phase, none, x, y}); }
    void swipeRow(std::size_t row, double x) {
        column->pointerEntered(id(row));
        scroll(began);
        scroll(changed, x / 2);
        scroll(changed, x / 2);
        scroll(ended);
    }
};

TEST_F(TodoColumnPresenterTest, ANewTodoIsOneNewRow) {
    int changes = 0;
    std::vector<int> insertedAt;
    QObject::connect(column->list(), &QAbstractItemModel::rowsInserted,
                     [&](const auto&, int first, int) { insertedAt.push_back(first); });
    for (const auto signal : {&QAbstractItemModel::modelReset, &QAbstractItemModel::modelAboutToBeReset})
        QObject::connect(column->list(), signal, [&] { ++changes; });
    QObject::connect(column->list(), &QAbstractItemModel::rowsMoved, [&] { ++changes; });
    QObject::connect(column->list(), &QAbstractItemModel::rowsRemoved, [&] { ++changes; });
    QObject::connect(column->list(), &QAbstractItemModel::dataChanged, [&] { ++changes; });
    column->toggle(id(2));
    platform.time.runPending();
    insertedAt.clear();
    changes = 0;
    column->submit("  d ");
    column->submit("   ");
    platform.time.runPending();
    EXPECT_THAT(insertedAt, ElementsAre(2));
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(order(), "abdc.");
    EXPECT_EQ(column->doneCount(), 1);
}

TEST_F(TodoColumnPresenterTest, ACaptureTakesTheKeyboardAndFoldsAfterOneTodo) {
    int focused = 0;
    int ended = 0;
    QObject::connect(&*column, &TodoColumnPresenter::captureFocusRequested, [&] { ++focused; });
    QObject::connect(&*column, &TodoColumnPresenter::captureEnded, [&] { ++ended; });
    column->submit("typed by hand");
    EXPECT_TRUE(posted.empty());

    notifications.post(notification::quickCaptureFocus);
    EXPECT_TRUE(column->isCapturing());
    platform.time.advance(0.24);
    EXPECT_EQ(focused, 1);
    platform.time.advance(0.02);
    EXPECT_EQ(focused, 2);  // again, when the panel surely has the keyboard
    column->submit("captured");
    EXPECT_THAT(posted, ElementsAre("collapseNotch"));
    EXPECT_EQ(ended, 1);
    column->submit("typed again");
    EXPECT_EQ(posted.size(), 1U);

    // Folded before the keyboard came: it does not come any more.
    notifications.post(notification::quickCaptureFocus);
    notifications.post(notification::collapseNotch);
    platform.time.advance(1);
    EXPECT_EQ(focused, 3);
    EXPECT_FALSE(column->isCapturing());

    // Folded by the pointer or the hotkey.
    model->setExpanded(true);
    notifications.post(notification::quickCaptureFocus);
    platform.time.advance(1);
    EXPECT_TRUE(column->isCapturing());
    model->setExpanded(false);
    platform.time.runPending();
    EXPECT_FALSE(column->isCapturing());
    EXPECT_EQ(ended, 3);
}

TEST_F(TodoColumnPresenterTest, TwoFingersFlagAndDeleteTheRowUnderThePointer) {
    EXPECT_FALSE(scroll(began));  // over no row: the panel's own business
    swipeRow(1, 70);
    EXPECT_EQ(order(), "abc");
    EXPECT_EQ(column->swipeX(), 0);
    swipeRow(1, 71);
    EXPECT_EQ(order(), "b!ac");
    swipeRow(0, 71);
    EXPECT_EQ(order(), "bac");
    swipeRow(2, -71);
    EXPECT_EQ(order(), "ba");
    EXPECT_EQ(column->swipeX(), -71);  // stays aside while it goes
    platform.time.advance(0.3);
    EXPECT_EQ(column->swipeX(), 0);
    EXPECT_TRUE(undo.undo());
    EXPECT_EQ(order(), "bac");

    // Up and down is for the list, and so is a wheel.
    column->pointerEntered(id(0));
    scroll(began);
    EXPECT_FALSE(scroll(changed, 1, 12));
    EXPECT_FALSE(scroll(changed, 90, 0));
    scroll(ended);
    EXPECT_FALSE(pointer.scroll({none, none, 0, 20}));
    // A swipe that leaves its row is none.
    scroll(began);
    scroll(changed, -90);
    EXPECT_EQ(column->swipedId(), id(0));
    column->pointerLeft(id(1));  // it was another's
    EXPECT_EQ(column->swipeX(), -90);
    column->pointerLeft(id(0));
    EXPECT_EQ(column->swipeX(), 0);
    EXPECT_FALSE(scroll(ended));
    EXPECT_EQ(order(), "bac");
    // A row that was deleted is no longer under the pointer, though it is seen while it goes.
    const QString gone = id(0);
    swipeRow(0, -71);
    platform.time.advance(0.1);
    EXPECT_FALSE(scroll(began));
    EXPECT_EQ(column->swipedId(), gone);
    platform.time.advance(0.3);
    column->pointerEntered(gone);
    EXPECT_FALSE(scroll(began));
    EXPECT_EQ(column->swipedId(), "");
}

TEST_F(TodoColumnPresenterTest, RowsMoveByDragAndKeyWithinTheirGroup) {
    todos().togglePrio(todos().todos()[2].id);
    platform.time.runPending();
    ASSERT_EQ(order(), "c!ab");
    EXPECT_EQ(column->dropRow(2, -60), 1);
    column->moveTo(id(2), column->dropRow(2, -60));
    EXPECT_EQ(order(), "c!ba");
    EXPECT_EQ(column->list()->todo(1)->text, "b");  // at once, before the pointer's next frame
    EXPECT_EQ(column->rowBeside(1, -1), 1);
    EXPECT_EQ(column->rowBeside(1, 1), 2);
    EXPECT_EQ(column->dropRow(7, 28), 7);
}

TEST_F(TodoColumnPresenterTest, RemindersAndEditsReachTheStore) {
    const Instant time = platform.clock.now() + 3600;
    column->setReminder(id(0), time.unixTime(), "weekly");
    EXPECT_EQ(todos().todos()[0].remindAt, time);
    EXPECT_EQ(todos().todos()[0].remindRepeat, "weekly");
    column->setReminder(id(1), std::numeric_limits<double>::quiet_NaN(), "");
    EXPECT_EQ(todos().todos()[1].remindAt, std::nullopt);
    column->setReminder(id(1), time.unixTime(), "");
    EXPECT_EQ(todos().todos()[1].remindRepeat, std::nullopt);
    column->clearReminder(id(0));
    EXPECT_EQ(todos().todos()[0].remindAt, std::nullopt);
    column->editBegins();
    EXPECT_THAT(posted, ElementsAre("makeNotchKey"));
    column->rename(id(0), "A");
    EXPECT_EQ(order(), "Abc");
    EXPECT_TRUE(undo.undo());
    EXPECT_EQ(order(), "abc");
    column->rename("not an id", "x");
    column->toggle(QString::fromStdString(Uuid::random().toString()));
    EXPECT_EQ(order(), "abc");
}

TEST_F(TodoColumnPresenterTest, ADateInATodoGoesIntoTheCalendarOnce) {
    const auto help = [this](int row) {
        return column->list()->data(column->list()->index(row), TodoListModel::eventRole).toString();
    };
    agenda.store.status = CalendarAccess::notDetermined;
    todos().rename(todos().todos()[0].id, "Dentist tomorrow at 3pm for 45 minutes");
    todos().rename(todos().todos()[1].id, "Dentist yesterday at 3pm");
    todos().rename(todos().todos()[2].id, "Upgrade to 10.4.2");
    platform.time.runPending();
    EXPECT_TRUE(help(0).startsWith("Add to Calendar — ")) << help(0).toStdString();
    EXPECT_EQ(help(1), "");
    EXPECT_EQ(help(2), "");

    column->addToCalendar(id(0));
    column->addToCalendar(id(0));
    EXPECT_EQ(agenda.store.questions, 1);
    agenda.store.answer(false);
    EXPECT_TRUE(agenda.store.added.empty());
    agenda.store.status = CalendarAccess::notDetermined;
    column->addToCalendar(id(0));
    agenda.store.answer(true);
    column->addToCalendar(id(1));
    platform.time.runPending();
    ASSERT_EQ(agenda.store.added.size(), 1U);
    EXPECT_EQ(agenda.store.added[0].title, "Dentist tomorrow at 3pm for 45 minutes");
    EXPECT_EQ(agenda.store.added[0].end - agenda.store.added[0].start, 2700);
    EXPECT_EQ(todos().todos()[0].eventID, "new-event");
    EXPECT_EQ(help(0), "");
    EXPECT_TRUE(column->list()->data(column->list()->index(0), TodoListModel::inCalendarRole).toBool());
}

TEST_F(TodoColumnPresenterTest, ARevealedTodoIsHighlightedForAWhile) {
    model->start();
    notifications.post(notification::revealTodo, todos().todos()[1].id.toString());
    platform.time.runPending();
    EXPECT_EQ(column->highlighted(), id(1));
    platform.time.advance(3.1);
    EXPECT_EQ(column->highlighted(), "");
}

}  // namespace
}  // namespace sunpane
