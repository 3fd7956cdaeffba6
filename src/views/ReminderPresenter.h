#pragma once

#include <QObject>
#include <QStringList>

#include "base/Clock.h"

namespace sunpane {

/// Lets QML offer and choose the times of reminders. Times are seconds since 1970. Holds no state. Main thread only.
class ReminderPresenter : public QObject {
    Q_OBJECT
    /// The rows of a reminder menu; the last one asks for a time of the user's own.
    Q_PROPERTY(QStringList options READ options CONSTANT)
    Q_PROPERTY(QStringList repetitions READ repetitions CONSTANT)

public:
    /// `clock` outlives this.
    explicit ReminderPresenter(const Clock& clock) : clock_(clock) {}

    QStringList options() const;
    QStringList repetitions() const;

    /// The time of the option at that index; NaN for the last one.
    Q_INVOKABLE double timeOf(int option) const;
    /// What the custom sheet begins with.
    Q_INVOKABLE double suggestion() const;
    /// The parts of a time are numbered as they are shown: day, month, year, hour, minute.
    Q_INVOKABLE double stepped(double time, int part, int steps) const;
    /// `time` itself when the part cannot have that value.
    Q_INVOKABLE double withPart(double time, int part, int value) const;
    Q_INVOKABLE int partValue(double time, int part) const;
    /// The numbers that a part can have.
    Q_INVOKABLE int leastOf(int part) const;
    Q_INVOKABLE int mostOf(int part) const;
    Q_INVOKABLE QString partText(double time, int part) const;
    /// The rule of a repetition as the todo store takes it; empty for none. And the other way round.
    Q_INVOKABLE QString ruleOf(int repetition) const;
    Q_INVOKABLE int repetitionOf(const QString& rule) const;

private:
    const Clock& clock_;
};

}  // namespace sunpane
