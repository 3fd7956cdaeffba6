#include "core/stores/Journal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

namespace sunpane {
namespace {

constexpr std::string_view magic = "dawnly journal 1\n";
constexpr std::string_view noBase = "-";

// 64-bit FNV-1a: tells damage and mix-ups, which is all that is asked of it here.
std::uint64_t checksum(std::string_view bytes, std::uint64_t hash = 0xcbf29ce484222325) {
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    return hash;
}

std::string hexadecimal(std::uint64_t value) {
    std::string digits(16, '0');
    for (std::size_t i = digits.size(); i-- > 0; value >>= 4)
        digits[i] = "0123456789abcdef"[value & 15];
    return digits;
}

// Takes what stands before the next `end` off the front of `text`; absent when there is none.
std::optional<std::string_view> takeUntil(std::string_view& text, char end) {
    const std::size_t at = text.find(end);
    if (at == std::string_view::npos) return std::nullopt;
    const auto taken = text.substr(0, at);
    text.remove_prefix(at + 1);
    return taken;
}

std::optional<std::size_t> toSize(std::string_view digits) {
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return value;
}

}  // namespace

std::string encodeJournal(std::string_view path, const std::string* base, std::string_view content) {
    std::string body(path);
    if (base != nullptr) body += *base;
    body += content;
    std::string record(magic);
    record.reserve(magic.size() + body.size() + 96);
    record += std::to_string(path.size()) + " ";
    record += (base != nullptr ? std::to_string(base->size()) : std::string(noBase)) + " ";
    record += std::to_string(content.size()) + " " + hexadecimal(checksum(body)) + "\n";
    return record + body;
}

std::optional<JournalRecord> decodeJournal(std::string_view bytes) {
    if (!bytes.starts_with(magic)) return std::nullopt;
    bytes.remove_prefix(magic.size());
    std::array<std::string_view, 3> lengths;
    for (auto& length : lengths) {
        const auto word = takeUntil(bytes, ' ');
        if (!word) return std::nullopt;
        length = *word;
    }
    const auto sum = takeUntil(bytes, '\n');
    if (!sum || *sum != hexadecimal(checksum(bytes))) return std::nullopt;

    const bool hasBase = lengths[1] != noBase;
    const auto path = toSize(lengths[0]);
    const auto base = hasBase ? toSize(lengths[1]) : std::optional<std::size_t>(0);
    const auto content = toSize(lengths[2]);
    if (!path || !base || !content || *path > bytes.size() || *base > bytes.size() - *path ||
        *content != bytes.size() - *path - *base) {
        return std::nullopt;
    }
    JournalRecord record{std::string(bytes.substr(0, *path)), std::nullopt, std::string(bytes.substr(*path + *base))};
    if (hasBase) record.base = bytes.substr(*path, *base);
    return record;
}

std::string journalName(std::string_view path) {
    return std::string(path.substr(path.rfind('/') + 1)) + "-" + hexadecimal(checksum(path));
}

bool isRemnantOf(std::string_view bytes, std::string_view content) {
    const std::size_t lastKept = bytes.find_last_not_of('\0');
    const auto kept = bytes.substr(0, lastKept == std::string_view::npos ? 0 : lastKept + 1);
    return bytes.size() <= content.size() && content.starts_with(kept);
}

}  // namespace sunpane
