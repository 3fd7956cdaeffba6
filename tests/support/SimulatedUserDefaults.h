#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/UserDefaults.h"

namespace sunpane::testing {

/// Settings that live as long as the test.
class SimulatedUserDefaults : public UserDefaults {
public:
    std::optional<Value> value(std::string_view key) const override {
        ++reads;
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    void set(std::string_view key, Value value) override {
        values.insert_or_assign(std::string(key), std::move(value));
    }
    void remove(std::string_view key) override {
        if (const auto found = values.find(key); found != values.end()) values.erase(found);
    }

    std::map<std::string, Value, std::less<>> values;
    /// How often a value was asked for.
    mutable int reads = 0;
};

}  // namespace sunpane::testing
