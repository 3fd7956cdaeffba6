// How long the view model takes to apply the folder's list anew, as it does after each change of a file and every half
// hour, with 30 briefings of 5 KB, 40 todos and a calendar: against only copying and sorting the same list, and against
// that and parsing the newest briefing once.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "base/Dates.h"
#include "support/SimulatedViewModel.h"

namespace {

using namespace sunpane;

constexpr int briefingCount = 30;
constexpr std::size_t briefingSize = 5000;
constexpr int rounds = 300;

// Where results go that nothing else reads.
volatile std::size_t sink = 0;

std::string briefing(int day) {
    std::string text = "# Day " + std::to_string(day) + "\n";
    for (int card = 0; text.size() < briefingSize; ++card) {
        if (card % 8 == 0) text += "### Section " + std::to_string(card / 8) + "\nA few words.\n";
        text +=
            "- **Card " + std::to_string(card) + "** says what there is to say, of day " + std::to_string(day) + "\n";
    }
    return text + "### Action Items\n- [ ] Send the deck " + std::to_string(day) + "\n- [x] Call back\n";
}

double microseconds(const std::function<void()>& run) {
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

}  // namespace

int main() {
    testing::SimulatedViewModel machine;
    auto& platform = machine.platform;
    auto& agenda = machine.agenda;
    agenda.store.status = CalendarAccess::full;

    const LocalCalendar calendar(platform.clock);
    for (int day = 0; day < briefingCount; ++day)
        machine.folder.write(calendar.format(platform.clock.now() - day * 86400.0, "yyyy-MM-dd") + ".md",
                             briefing(day));
    for (int event = 0; event < 10; ++event)
        agenda.store.all.push_back(
            testing::timedEvent("Meeting " + std::to_string(event), platform.clock.now() + event * 3000.0, 5400));

    NotchViewModel& model = *machine.model;
    for (int todo = 0; todo < 40; ++todo)
        model.todoStore().add("Something to do " + std::to_string(todo));
    for (int card = 0; card < 6; ++card)
        model.flagStore().togglePrio(BriefingItem("**Card " + std::to_string(card) + "** of another day"));
    model.start();
    platform.time.advance(3);
    if (model.briefings().size() != briefingCount) return 1;

    const std::vector<Briefing> list = model.briefings();
    std::vector<double> applying;
    std::vector<double> sorting;
    std::vector<double> parsing;
    for (int round = 0; round < rounds; ++round) {
        applying.push_back(microseconds([&] {
            agenda.fallback.onChange();  // has the same list applied anew
            platform.time.runPending();
        }));
        const auto copyAndSort = [&] {
            std::vector<Briefing> copy = list;
            std::stable_sort(copy.begin(), copy.end(),
                             [](const Briefing& a, const Briefing& b) { return a.date > b.date; });
            sink = sink + copy.front().markdown.size();
        };
        sorting.push_back(microseconds(copyAndSort));
        parsing.push_back(microseconds([&] {
            copyAndSort();
            sink = sink + list.front().sections().size() + list.front().actionItems().size();
        }));
    }
    const double apply = median(applying);
    std::printf(
        "apply %d briefings of %zu bytes: %.1f us; copying and sorting the list %.1f us, ratio %.1f; that and "
        "parsing the newest %.1f us, ratio %.1f (median of %d)\n",
        briefingCount, list.front().markdown.size(), apply, median(sorting), apply / median(sorting), median(parsing),
        apply / median(parsing), rounds);
    return 0;
}
