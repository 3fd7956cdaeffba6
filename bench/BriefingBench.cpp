// How fast briefings are parsed and loaded: against two markdown parsers on the same bytes, and against only reading
// the same files. Each subject is measured in turns with its peers, so that a busy machine hits all alike; medians
// count.

#include <cmark.h>
#include <fcntl.h>
#include <md4c.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef SUNPANE_MD4C_HTML
#include <md4c-html.h>
#endif

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "base/Text.h"
#include "core/briefing/BriefingFile.h"
#include "core/briefing/BriefingParser.h"
#include "core/briefing/FolderBriefingProvider.h"

namespace {

using namespace sunpane;

constexpr int rounds = 15;
// What one measurement takes at least (s), so that the clock's resolution does not count.
constexpr double minimumTime = 0.02;

// Where results go that nothing else reads.
volatile std::size_t sink = 0;

struct Subject {
    std::string name;
    std::function<void()> run;
    std::vector<double> seconds;
};

// Processor time (s), so that other programs' turns do not count; nothing here waits for a disk.
double processorTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    constexpr double nanosecond = 1e-9;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * nanosecond;
}

double timed(const std::function<void()>& run, std::size_t repetitions) {
    const double start = processorTime();
    for (std::size_t i = 0; i < repetitions; ++i)
        run();
    return processorTime() - start;
}

// One measurement in a process of its own, so that no subject works in a heap that another has cut to pieces: warms up,
// then returns the time of one run (s).
double timedAlone(const std::function<void()>& run) {
    int ends[2];
    if (pipe(ends) != 0) std::exit(1);
    const pid_t child = fork();
    if (child == 0) {
        std::size_t count = 1;
        while (timed(run, count) < minimumTime)
            count *= 2;
        const double seconds = timed(run, count) / static_cast<double>(count);
        _exit(write(ends[1], &seconds, sizeof seconds) == sizeof seconds ? 0 : 1);
    }
    double seconds = 0;
    const bool hasRead = read(ends[0], &seconds, sizeof seconds) == sizeof seconds;
    close(ends[0]);
    close(ends[1]);
    if (waitpid(child, nullptr, 0) != child || !hasRead) std::exit(1);
    return seconds;
}

// The median time of one run of each subject (s).
std::vector<double> measure(std::vector<Subject> subjects) {
    for (int round = 0; round < rounds; ++round) {
        for (auto& subject : subjects)
            subject.seconds.push_back(timedAlone(subject.run));
    }
    std::vector<double> medians;
    for (auto& subject : subjects) {
        std::sort(subject.seconds.begin(), subject.seconds.end());
        medians.push_back(subject.seconds[subject.seconds.size() / 2]);
    }
    return medians;
}

// A day as an agent writes it: bold phrases, links, code, dashes and emoji, about 4.5 KB.
std::string oneDay() {
    const std::vector<std::string> cards = {
        "- 10:00 **Standup** — room 2, Anna shows the [new build](https://ci.example.org/builds/4211)\n",
        "- **Reply to Legal** — the contract is due on *Friday*; the last question is about `section 7`\n",
        "- Review the pull request of Bjørn: [Read the folder once](https://git.example.org/dawn/pulls/318), 3 "
        "comments\n",
        "- **Invoice 2026-114** was paid, the customer asks for a copy with the new address\n  and wants to meet in "
        "December\n",
        "- Flight KL1234 on Thursday at 07:55 from Schiphol, gate opens 07:10 — check in today ✈️\n",
    };
    const std::vector<std::string> headings = {"### 📅 Today's Schedule\n", "### 📬 Inbox\n", "### 🔥 Projects\n",
                                               "### 🧭 Planning\n", "### 🌙 Evening\n"};
    std::string text = "# Morning Briefing, Monday 16 November\n\nA quiet morning, then two meetings in a row.\n\n";
    for (std::size_t i = 0; i < headings.size(); ++i) {
        text += headings[i];
        for (std::size_t j = 0; j < 8; ++j)
            text += cards[(i + j) % cards.size()];
        text += "\n";
    }
    text +=
        "### ✅ Action Items\n- [ ] 💼 Send the deck to **Anna** before noon\n- [x] PRSNL Call mum\n- [ ] Book the "
        "train\n";
    return text;
}

std::string ofSize(std::size_t size) {
    const std::string day = oneDay();
    std::string text;
    text.reserve(size + day.size());
    while (text.size() < size)
        text += day;
    return text;
}

void parseOurs(const std::string& text) {
    const briefing::Document document = briefing::splitDocument(text);
    const auto sections = briefing::sections(document.markdown);
    const auto actionItems = briefing::actionItems(document.markdown);
    sink = sink + sections.size() + actionItems.size() + document.title.size();
}

void parseMd4c(const std::string& text) {
    MD_PARSER parser{};
    parser.enter_block = [](MD_BLOCKTYPE, void*, void*) { return 0; };
    parser.leave_block = parser.enter_block;
    parser.enter_span = [](MD_SPANTYPE, void*, void*) { return 0; };
    parser.leave_span = parser.enter_span;
    parser.text = [](MD_TEXTTYPE, const MD_CHAR*, MD_SIZE, void*) { return 0; };
    sink = sink + static_cast<std::size_t>(md_parse(text.data(), static_cast<MD_SIZE>(text.size()), &parser, nullptr));
}

#ifdef SUNPANE_MD4C_HTML
void renderMd4c(const std::string& text) {
    const auto count = [](const MD_CHAR*, MD_SIZE size, void* sum) { *static_cast<std::size_t*>(sum) += size; };
    std::size_t total = 0;
    md_html(text.data(), static_cast<MD_SIZE>(text.size()), count, &total, 0, 0);
    sink = sink + total;
}
#endif

void parseCmark(const std::string& text) {
    cmark_node* document = cmark_parse_document(text.data(), text.size(), CMARK_OPT_DEFAULT);
    sink = sink + static_cast<std::size_t>(cmark_node_get_type(document));
    cmark_node_free(document);
}

// Our time per byte.
double benchParsing(std::size_t size, bool withPeers) {
    const std::string text = ofSize(size);
    std::vector<Subject> subjects{{"ours", [&] { parseOurs(text); }, {}}};
    if (withPeers) {
        subjects.push_back({"md4c, parse only", [&] { parseMd4c(text); }, {}});
#ifdef SUNPANE_MD4C_HTML
        subjects.push_back({"md4c, to HTML", [&] { renderMd4c(text); }, {}});
#endif
        subjects.push_back({"cmark, to a tree", [&] { parseCmark(text); }, {}});
    }
    const auto medians = measure(subjects);
    const auto bytes = static_cast<double>(text.size());
    std::printf("\nparsing %zu bytes\n", text.size());
    for (std::size_t i = 0; i < subjects.size(); ++i) {
        std::printf("  %-18s %12.2f us  %8.1f MB/s  %6.2f x ours\n", subjects[i].name.c_str(), medians[i] * 1e6,
                    bytes / medians[i] / 1e6, medians[i] / medians[0]);
    }
    return medians[0] / bytes;
}

void readOnly(const std::string& folder, const std::vector<std::string>& names, std::string& buffer) {
    for (const auto& name : names) {
        const int descriptor = open((folder + "/" + name).c_str(), O_RDONLY | O_CLOEXEC);
        ssize_t count = 0;
        while ((count = read(descriptor, buffer.data(), buffer.size())) > 0)
            sink = sink + static_cast<std::size_t>(count);
        close(descriptor);
    }
}

class NoCloud : public CloudFiles {
public:
    void startDownloading(const std::string& /*path*/) override {}
};

void benchLoading(std::size_t count) {
    std::string folder = std::filesystem::temp_directory_path() / "briefing-bench-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) std::exit(1);
    const std::string day = oneDay();
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i) {
        char name[32];
        std::snprintf(name, sizeof name, "%04zu-%02zu-%02zu.md", 2000 + i / 336, i / 28 % 12 + 1, i % 28 + 1);
        names.emplace_back(name);
        std::ofstream(folder + "/" + name) << day;
    }
    NoCloud cloud;
    const LocalCalendar calendar("Europe/Amsterdam", "en_US");
    std::string buffer(64 * 1024, '\0');
    const auto medians = measure(
        {{"load", [&] { sink = sink + FolderBriefingProvider::loadBriefings(folder, calendar, cloud).size(); }, {}},
         {"read", [&] { readOnly(folder, names, buffer); }, {}}});
    std::printf("\nloading %zu briefings of %zu bytes\n  load %10.1f us, only reading %10.1f us: %.2f times\n", count,
                day.size(), medians[0] * 1e6, medians[1] * 1e6, medians[0] / medians[1]);
    std::filesystem::remove_all(folder);
}

}  // namespace

int main() {
    constexpr std::size_t mebibyte = std::size_t{1} << 20;
    benchParsing(1, true);  // one day
    const double at16 = benchParsing(16 * mebibyte, true);
    const double at64 = benchParsing(64 * mebibyte, false);
    std::printf("\ntime per byte at 64 MB over 16 MB: %.2f\n", at64 / at16);
    benchLoading(30);
    benchLoading(10000);
}
