#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/JoinLink.h"

// Prints what the search for a join link costs on text without one, next to the C library's own searches over the same
// bytes: medians of interleaved repetitions.
namespace sunpane {
namespace {

constexpr std::size_t textBytes = 1 << 20;
constexpr int repetitions = 301;

std::string repeated(std::string_view piece) {
    std::string text;
    while (text.size() < textBytes)
        text += piece;
    return text;
}

template <class Work>
double seconds(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void measure(const char* what, const std::string& text) {
    std::vector<double> ours;
    std::vector<double> byByte;
    std::vector<double> byPrefix;
    std::size_t found = 0;
    for (int i = 0; i < repetitions; ++i) {
        ours.push_back(seconds([&] { found += joinURL(std::string_view(text)) ? 1 : 0; }));
        byByte.push_back(seconds([&] { found += std::memchr(text.data(), '\x01', text.size()) != nullptr ? 1 : 0; }));
        byPrefix.push_back(
            seconds([&] { found += memmem(text.data(), text.size(), "https://?", 9) != nullptr ? 1 : 0; }));
    }
    const double time = median(ours);
    std::printf("%s, %zu KB: %.1f us, %.2f GB/s; memchr %.1f us (ratio %.2f); memmem %.1f us (ratio %.2f)%s\n", what,
                text.size() / 1024, time * 1e6, static_cast<double>(text.size()) / time * 1e-9, median(byByte) * 1e6,
                time / median(byByte), median(byPrefix) * 1e6, time / median(byPrefix),
                found > 0 ? " (found one)" : "");
}

}  // namespace
}  // namespace sunpane

int main() {
    using sunpane::measure;
    using sunpane::repeated;
    measure("letters", repeated("the quick brown fox jumps over the lazy dog and then goes home "));
    measure("an invitation's text",
            repeated("Agenda: who does what by when (see the notes of last week's meeting at 10:00), then lunch. "));
    measure("links to other hosts", repeated("see https://docs.example.com/document/d/1a2b3c4d5e/edit and reply. "));
    measure("colons", repeated(":"));
    measure("prefixes", repeated("https://"));
    return 0;
}
