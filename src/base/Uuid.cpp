#include "base/Uuid.h"

#include <random>

namespace sunpane {
namespace {

constexpr std::size_t textLength = 36;

bool isDashPosition(std::size_t index) {
    return index == 8 || index == 13 || index == 18 || index == 23;
}

int hexValue(char character) {
    if (character >= '0' && character <= '9') return character - '0';
    if (character >= 'a' && character <= 'f') return character - 'a' + 10;
    if (character >= 'A' && character <= 'F') return character - 'A' + 10;
    return -1;
}

}  // namespace

Uuid Uuid::random() {
    std::random_device entropy;
    std::array<std::uint8_t, 16> bytes{};
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        const auto word = entropy();
        for (std::size_t j = 0; j < 4; ++j)
            bytes[i + j] = static_cast<std::uint8_t>(word >> (8 * j));
    }
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);  // version 4
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);  // the RFC's variant
    return Uuid(bytes);
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != textLength) return std::nullopt;
    std::array<std::uint8_t, 16> bytes{};
    std::size_t digit = 0;
    for (std::size_t i = 0; i < textLength; ++i) {
        if (isDashPosition(i)) {
            if (text[i] != '-') return std::nullopt;
            continue;
        }
        const int value = hexValue(text[i]);
        if (value < 0) return std::nullopt;
        auto& byte = bytes[digit / 2];
        byte = static_cast<std::uint8_t>((byte << 4) | value);
        ++digit;
    }
    return Uuid(bytes);
}

Uuid Uuid::next() const {
    constexpr std::size_t firstOfLast = 8;
    Uuid following = *this;
    for (std::size_t i = following.bytes_.size(); i-- > firstOfLast;) {
        if (++following.bytes_.at(i) != 0) break;
    }
    return following;
}

std::string Uuid::toString() const {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(textLength);
    for (const auto byte : bytes_) {
        if (isDashPosition(text.size())) text += '-';
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return text;
}

}  // namespace sunpane
