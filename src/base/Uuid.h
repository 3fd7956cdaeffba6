#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace sunpane {

/// A 128-bit identifier (RFC 9562).
class Uuid {
public:
    /// A random (version 4) identifier from the operating system's entropy.
    static Uuid random();

    /// Reads the 36-character form, 8-4-4-4-12 hexadecimal digits in either case. Anything else: absent.
    static std::optional<Uuid> parse(std::string_view text);

    explicit Uuid(const std::array<std::uint8_t, 16>& bytes) : bytes_(bytes) {}

    /// The one whose last eight bytes are greater by one, round to zero.
    Uuid next() const;

    /// The 36-character form in upper case.
    std::string toString() const;

    friend auto operator<=>(const Uuid&, const Uuid&) = default;

private:
    std::array<std::uint8_t, 16> bytes_;
};

}  // namespace sunpane
