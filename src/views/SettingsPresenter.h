#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <functional>
#include <memory>

#include "base/RunLoop.h"
#include "settings/SettingsModel.h"
#include "views/ThemePresenter.h"

namespace sunpane {

/// Carries the settings to QML and the user's choices back. Holds no rules. Main thread only.
class SettingsPresenter : public QObject {
    Q_OBJECT
    Q_PROPERTY(sunpane::ThemePresenter* theme READ theme CONSTANT)
    Q_PROPERTY(bool canLaunchAtLogin READ canLaunchAtLogin CONSTANT)
    Q_PROPERTY(bool launchAtLogin READ launchAtLogin NOTIFY changed)
    /// Empty when nothing failed.
    Q_PROPERTY(QString loginItemError READ loginItemError NOTIFY changed)
    Q_PROPERTY(bool quickCapture READ quickCapture NOTIFY changed)
    Q_PROPERTY(bool calendarTodos READ calendarTodos NOTIFY changed)
    /// Maps of "identifier" and "title", by title.
    Q_PROPERTY(QVariantList calendars READ calendars NOTIFY calendarsChanged)
    Q_PROPERTY(QStringList todoCalendars READ todoCalendars NOTIFY changed)
    Q_PROPERTY(QString watchedFolder READ watchedFolder NOTIFY changed)
    /// Where the todos are meanwhile; empty when they are in the watched folder.
    Q_PROPERTY(QString otherStoresFolder READ otherStoresFolder NOTIFY changed)
    Q_PROPERTY(bool usesDefaultFolder READ usesDefaultFolder NOTIFY changed)
    Q_PROPERTY(QString morningTask READ morningTask NOTIFY changed)
    Q_PROPERTY(QString eveningTask READ eveningTask NOTIFY changed)

public:
    /// What the window's own buttons do.
    struct Actions {
        std::function<void()> showTour;
        std::function<void()> quit;
    };

    /// Everything outlives the presenter.
    SettingsPresenter(SettingsModel& model, CalendarStore& calendars, ThemeStore& theme, RunLoop& runLoop,
                      Actions actions);

    ThemePresenter* theme() { return &theme_; }
    bool canLaunchAtLogin() const { return model_.canLaunchAtLogin(); }
    bool launchAtLogin() const { return model_.launchAtLogin(); }
    QString loginItemError() const { return QString::fromStdString(model_.loginItemError().value_or("")); }
    bool quickCapture() const { return model_.quickCapture(); }
    bool calendarTodos() const { return model_.calendarTodos(); }
    QVariantList calendars() const;
    QStringList todoCalendars() const;
    QString watchedFolder() const { return QString::fromStdString(model_.watchedFolder()); }
    QString otherStoresFolder() const { return QString::fromStdString(model_.otherStoresFolder().value_or("")); }
    bool usesDefaultFolder() const { return model_.usesDefaultFolder(); }
    QString morningTask() const { return QString::fromStdString(model_.task(SettingsModel::Task::morning)); }
    QString eveningTask() const { return QString::fromStdString(model_.task(SettingsModel::Task::evening)); }

    Q_INVOKABLE void setLaunchAtLogin(bool on) { model_.setLaunchAtLogin(on); }
    Q_INVOKABLE void setQuickCapture(bool on) { model_.setQuickCapture(on); }
    Q_INVOKABLE void setCalendarTodos(bool on) { model_.setCalendarTodos(on); }
    Q_INVOKABLE void setTodoCalendar(const QString& identifier, bool on) {
        model_.setTodoCalendar(identifier.toStdString(), on);
    }
    Q_INVOKABLE void pickFolder() { model_.pickFolder(); }
    Q_INVOKABLE void openFolder() { model_.openFolder(); }
    Q_INVOKABLE void resetFolder() { model_.setFolder(std::nullopt); }
    Q_INVOKABLE void copyMorningTask() { model_.copy(SettingsModel::Task::morning); }
    Q_INVOKABLE void copyEveningTask() { model_.copy(SettingsModel::Task::evening); }
    Q_INVOKABLE void copyDeliveryBlock() { model_.copy(SettingsModel::Task::delivery); }
    Q_INVOKABLE void showTour() { actions_.showTour(); }
    Q_INVOKABLE void quit() { actions_.quit(); }

    /// What another program changed meanwhile shows too.
    void refresh();

signals:
    void changed();
    void calendarsChanged();

private:
    SettingsModel& model_;
    ThemePresenter theme_;
    Actions actions_;
    std::shared_ptr<SettingsPresenter*> self_;
    Subscription changes_;
    Subscription calendarChanges_;
};

}  // namespace sunpane
