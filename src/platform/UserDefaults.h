#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace sunpane {

/// The user's settings: typed values by key, kept across starts. Main thread, but reading is allowed from any thread.
/// A write is kept at once; a failing write leaves the value in memory.
class UserDefaults {
public:
    using Value = std::variant<bool, std::int64_t, double, std::string, std::vector<std::string>>;

    virtual ~UserDefaults() = default;

    /// Absent when the key was never set or holds something that no `Value` can.
    virtual std::optional<Value> value(std::string_view key) const = 0;
    /// Both tell whether the change is kept across starts.
    virtual bool set(std::string_view key, Value value) = 0;
    virtual bool remove(std::string_view key) = 0;
    /// Every key that was set, in alphabetical order.
    virtual std::vector<std::string> keys() const = 0;

    enum class Presence { absent, mistyped, present };

    /// A value read as one type: `value` is set exactly when `presence` says present.
    template <class T>
    struct Reading {
        Presence presence = Presence::absent;
        std::optional<T> value;
        T valueOr(T fallback) const { return value ? *value : std::move(fallback); }
    };

    /// Reads `key` as T, one of the types of `Value`. An integer also reads as a double.
    template <class T>
    Reading<T> read(std::string_view key) const {
        const auto stored = value(key);
        if (!stored) return {};
        if (const T* typed = std::get_if<T>(&*stored)) return {Presence::present, *typed};
        if constexpr (std::is_same_v<T, double>) {
            if (const auto* integer = std::get_if<std::int64_t>(&*stored)) {
                return {Presence::present, static_cast<double>(*integer)};
            }
        }
        return {Presence::mistyped, std::nullopt};
    }
};

}  // namespace sunpane
