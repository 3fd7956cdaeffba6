#include "views/ReminderPresenter.h"

#include <limits>
#include <string_view>

#include "base/Dates.h"
#include "views/ReminderTimes.h"

namespace sunpane {
namespace {

QString toQt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

bool isPart(int part) {
    return part >= 0 && part < static_cast<int>(reminder_times::parts.size());
}

}  // namespace

QStringList ReminderPresenter::options() const {
    QStringList texts;
    for (const auto text : reminder_times::optionTexts)
        texts.append(toQt(text));
    return texts;
}

QStringList ReminderPresenter::repetitions() const {
    QStringList labels;
    for (const auto& repetition : reminder_times::repetitions)
        labels.append(toQt(repetition.label));
    return labels;
}

double ReminderPresenter::timeOf(int option) const {
    const auto time =
        option < 0 ? std::nullopt
                   : reminder_times::timeOf(static_cast<std::size_t>(option), clock_.now(), LocalCalendar(clock_));
    return time ? time->unixTime() : std::numeric_limits<double>::quiet_NaN();
}

double ReminderPresenter::suggestion() const {
    return reminder_times::suggestion(clock_.now(), LocalCalendar(clock_)).unixTime();
}

double ReminderPresenter::stepped(double time, int part, int steps) const {
    if (!isPart(part)) return time;
    return reminder_times::stepped(Instant::fromUnix(time), reminder_times::Part{part}, steps, LocalCalendar(clock_))
        .unixTime();
}

double ReminderPresenter::withPart(double time, int part, int value) const {
    if (!isPart(part)) return time;
    const Instant before = Instant::fromUnix(time);
    return reminder_times::withPart(before, reminder_times::Part{part}, value, LocalCalendar(clock_))
        .value_or(before)
        .unixTime();
}

int ReminderPresenter::partValue(double time, int part) const {
    if (!isPart(part)) return 0;
    return reminder_times::partValue(Instant::fromUnix(time), reminder_times::Part{part}, LocalCalendar(clock_));
}

int ReminderPresenter::leastOf(int part) const {
    return isPart(part) ? reminder_times::rangeOf(reminder_times::Part{part}).least : 0;
}

int ReminderPresenter::mostOf(int part) const {
    return isPart(part) ? reminder_times::rangeOf(reminder_times::Part{part}).most : 0;
}

QString ReminderPresenter::partText(double time, int part) const {
    if (!isPart(part)) return {};
    return QString::fromStdString(
        reminder_times::partText(Instant::fromUnix(time), reminder_times::Part{part}, LocalCalendar(clock_)));
}

QString ReminderPresenter::ruleOf(int repetition) const {
    if (repetition < 0 || repetition >= static_cast<int>(reminder_times::repetitions.size())) return {};
    return toQt(reminder_times::repetitions[static_cast<std::size_t>(repetition)].rule);
}

int ReminderPresenter::repetitionOf(const QString& rule) const {
    for (int i = 0; i < static_cast<int>(reminder_times::repetitions.size()); ++i) {
        if (ruleOf(i) == rule) return i;
    }
    return 0;
}

}  // namespace sunpane
