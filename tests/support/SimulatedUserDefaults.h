#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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
    bool set(std::string_view key, Value value) override {
        ++writes;
        values.insert_or_assign(std::string(key), std::move(value));
        return isWritable;
    }
    bool remove(std::string_view key) override {
        if (const auto found = values.find(key); found != values.end()) values.erase(found);
        return isWritable;
    }
    std::vector<std::string> keys() const override {
        std::vector<std::string> all;
        for (const auto& [key, value] : values)
            all.push_back(key);
        return all;
    }

    std::map<std::string, Value, std::less<>> values;
    bool isWritable = true;
    /// How often a value was asked for.
    mutable int reads = 0;
    int writes = 0;
};

}  // namespace sunpane::testing
