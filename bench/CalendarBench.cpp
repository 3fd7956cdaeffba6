#include <libical/ical.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "base/RunLoop.h"
#include "linux/calendar/CalendarReader.h"
#include "linux/calendar/IcsReading.h"
#include "linux/system/InotifyFolderEvents.h"
#include "linux/system/PosixFileSystem.h"
#include "linux/system/SystemClock.h"
#include "linux/system/ThreadWorkQueue.h"
#include "support/TemporaryFolder.h"

// Prints what 50,000 events cost next to only parsing the same files: medians of repetitions taken in turns.
namespace sunpane {
namespace {

constexpr int calendarCount = 10;
constexpr int eventsPerCalendar = 5000;
constexpr int eventsInWindow = 40;
constexpr double day = 86400;

std::string utc(Instant instant) {
    const icaltimetype time =
        icaltime_from_timet_with_zone(static_cast<time_t>(instant.unixTime()), 0, icaltimezone_get_utc_timezone());
    return icaltime_as_ical_string(time);
}

std::string makeEvent(const std::string& uid, Instant start) {
    return "BEGIN:VEVENT\r\nUID:" + uid + "@example.org\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:" + utc(start) +
           "\r\nDTEND:" + utc(start + 3600) + "\r\nSUMMARY:Weekly planning\\, team " + uid +
           "\r\nLOCATION:Room 4\r\nDESCRIPTION:Agenda:\\n- what was done\\n- what comes next\\n- who needs help with "
           "\r\n what\r\nORGANIZER;CN=Ada:mailto:ada@example.org\r\nATTENDEE;CN=Grace;PARTSTAT=ACCEPTED:mailto:grace@"
           "\r\n example.org\r\nSTATUS:CONFIRMED\r\nTRANSP:OPAQUE\r\nBEGIN:VALARM\r\nACTION:DISPLAY\r\n"
           "DESCRIPTION:Reminder\r\nTRIGGER:-PT15M\r\nEND:VALARM\r\nEND:VEVENT\r\n";
}

// Ten years of meetings, 40 of them in the coming 14 days.
void writeCalendars(const std::string& folder, Instant now) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> daysAgo(30, 3650);
    for (int calendar = 0; calendar < calendarCount; ++calendar) {
        std::ofstream file(folder + "/calendar" + std::to_string(calendar) + ".ics", std::ios::binary);
        file << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//example//EN\r\n";
        for (int i = 0; i < eventsPerCalendar; ++i) {
            const bool inWindow = i < eventsInWindow / calendarCount;
            const Instant start = inWindow ? now + (1 + 3 * i) * day : now - daysAgo(random) * day;
            file << makeEvent(std::to_string(calendar) + "-" + std::to_string(i), start);
        }
        file << "END:VCALENDAR\r\n";
    }
}

double seconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

/// Runs everything at once, on the thread that posts it.
class DirectQueue : public WorkQueue {
public:
    void post(Task task) override { task(); }
    Subscription after(Seconds, Task) override { return {}; }
    Subscription every(Seconds, Task) override { return {}; }
    const std::string& label() const override { return label_; }
    void drain() override {}

private:
    std::string label_ = "direct";
};

void parseOnly(const std::vector<std::string>& paths) {
    for (const auto& path : paths) {
        std::ifstream file(path, std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        icalcomponent_free(icalparser_parse_string(bytes.c_str()));
    }
}

void measure() {
    const testing::TemporaryFolder folder;
    const SystemClock clock;
    const Instant now = clock.now();
    writeCalendars(folder.path(), now);
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        paths.push_back(entry.path());

    DirectQueue queue;
    InotifyFolderEvents folderEvents;
    PosixFileSystem files;
    std::vector<double> parsing, reading, again, asking, stamping;
    for (int repetition = 0; repetition < 7; ++repetition) {
        parsing.push_back(seconds([&] { parseOnly(paths); }));
        std::shared_ptr<const CalendarSnapshot> snapshot;
        CalendarReader reader({clock, queue, folderEvents, files, folder.path(), nullptr},
                              [&](std::shared_ptr<const CalendarSnapshot> published) { snapshot = published; });
        reading.push_back(seconds([&] { reader.start(); }));
        again.push_back(seconds([&] { reader.check(); }));
        std::size_t found = 0;
        asking.push_back(seconds([&] { found = snapshot->events(now, now + 14 * day).size(); }));
        if (found != eventsInWindow) std::printf("WRONG: %zu events in the window\n", found);
        stamping.push_back(seconds([&] {
            for (const auto& path : paths) {
                struct stat status {};
                if (stat(path.c_str(), &status) != 0) std::printf("WRONG: a file is gone\n");
            }
        }));
        reader.stop([] {});
    }
    std::printf("%d events in %d files, %d of them in the next 14 days\n", calendarCount * eventsPerCalendar,
                calendarCount, eventsInWindow);
    std::printf("read, worked out and indexed    %8.1f ms   %.2f times parsing with libical (%.1f ms)\n",
                median(reading) * 1e3, median(reading) / median(parsing), median(parsing) * 1e3);
    std::printf("looked through, nothing changed %8.3f ms   %.1f times stat(2) of each file\n", median(again) * 1e3,
                median(again) / median(stamping));
    std::printf("the next 14 days asked for      %8.3f ms   of at most 1 ms\n", median(asking) * 1e3);
}

}  // namespace
}  // namespace sunpane

int main() {
    sunpane::measure();
}
