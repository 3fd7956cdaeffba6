#include "core/stores/Json.h"

#include <array>
#include <cassert>
#include <charconv>
#include <cmath>

namespace sunpane::json {
namespace {

void appendEscaped(std::string& out, char c) {
    switch (c) {
        case '"':
            out += "\\\"";
            return;
        case '\\':
            out += "\\\\";
            return;
        case '\b':
            out += "\\b";
            return;
        case '\f':
            out += "\\f";
            return;
        case '\n':
            out += "\\n";
            return;
        case '\r':
            out += "\\r";
            return;
        case '\t':
            out += "\\t";
            return;
        default:
            out += "\\u00";
            out += "0123456789abcdef"[(c >> 4) & 1];
            out += "0123456789abcdef"[c & 15];
    }
}

bool needsEscape(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\';
}

template <class Map, class AppendValue>
void appendObject(std::string& out, const Map& object, AppendValue appendValue) {
    out += '{';
    bool first = true;
    for (const auto& [key, value] : object) {
        if (!first) out += ',';
        first = false;
        appendString(out, key);
        out += ':';
        appendValue(value);
    }
    out += '}';
}

}  // namespace

void appendString(std::string& out, std::string_view text) {
    out += '"';
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!needsEscape(text[i])) continue;
        out.append(text, start, i - start);
        appendEscaped(out, text[i]);
        start = i + 1;
    }
    out.append(text, start);
    out += '"';
}

void appendNumber(std::string& out, double value) {
    assert(std::isfinite(value));
    // Up to here every whole number has its own double, so that plain digits are exact and short.
    constexpr double largestPlain = 9007199254740992.0;
    std::array<char, 32> digits{};
    const bool plain = value == 0 || (std::abs(value) < largestPlain && std::abs(value) >= 1);
    const auto end = plain
                         ? std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed)
                         : std::to_chars(digits.data(), digits.data() + digits.size(), value);
    assert(end.ec == std::errc());
    out.append(digits.data(), end.ptr);
}

void appendString(std::string& out, const std::map<std::string, std::string>& object) {
    appendObject(out, object, [&](const std::string& value) { appendString(out, value); });
}

void appendNumber(std::string& out, const std::map<std::string, Instant>& object) {
    appendObject(out, object, [&](Instant value) { appendNumber(out, value.sinceReference); });
}

bool Reader::read(std::string_view text) {
    // The library takes a zero byte for the end of the text.
    if (text.find('\0') != std::string_view::npos) return false;
    return nlohmann::json::sax_parse(text.begin(), text.end(), this) && !tooDeep_;
}

bool Reader::skipsScalar() {
    if (skipping_ > 0) return true;
    if (!skipNext_) return false;
    skipNext_ = false;
    return true;
}

// True when the value that opens is passed over; a refused depth is passed over too and remembered.
bool Reader::opens() {
    if (skipping_ == 0 && !skipNext_) return false;
    skipNext_ = false;
    if (++skipping_ > maximumDepth) tooDeep_ = true;
    return true;
}

bool Reader::closes() {
    if (skipping_ == 0) return false;
    --skipping_;
    return true;
}

}  // namespace sunpane::json
