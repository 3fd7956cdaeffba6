#pragma once

#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "base/Instant.h"

/// How the store files are written and read. Pure; any thread.
namespace sunpane::json {

/// Appends `text`, valid UTF-8, as a JSON string.
void appendString(std::string& out, std::string_view text);

/// Appends a finite number in the fewest digits that read back as the same; a whole number has no fraction.
void appendNumber(std::string& out, double value);

void appendString(std::string& out, const std::map<std::string, std::string>& object);
void appendNumber(std::string& out, const std::map<std::string, Instant>& object);

/// Reads one JSON text event by event, straight into records, with the strictness that a file of records needs: a
/// value of another type than the record says makes the whole text unreadable. Members that nobody asked for are
/// skipped, whatever they hold. Of a repeated member the last counts.
///
/// A subclass is told of values through the `on...` functions; returning false ends the reading.
class Reader : public nlohmann::json_sax<nlohmann::json> {
public:
    /// Deeper nesting is refused. Our own files nest three deep.
    static constexpr std::size_t maximumDepth = 512;

    /// Whether all of `text` was read.
    bool read(std::string_view text);

    bool null() final { return skipsScalar() || onNull(); }
    bool boolean(bool value) final { return skipsScalar() || onBoolean(value); }
    bool number_integer(number_integer_t value) final {  // NOLINT(readability-identifier-naming)
        return skipsScalar() || onNumber(static_cast<double>(value));
    }
    bool number_unsigned(number_unsigned_t value) final {  // NOLINT(readability-identifier-naming)
        return skipsScalar() || onNumber(static_cast<double>(value));
    }
    bool number_float(number_float_t value, const string_t&) final {  // NOLINT(readability-identifier-naming)
        return skipsScalar() || onNumber(value);
    }
    bool string(string_t& value) final { return skipsScalar() || onString(value); }
    bool binary(binary_t&) final { return false; }
    bool start_object(std::size_t) final {
        return opens() || onStartObject();
    }  // NOLINT(readability-identifier-naming)
    bool key(string_t& name) final { return skipping_ > 0 || onKey(name); }
    bool end_object() final { return closes() || onEndObject(); }              // NOLINT(readability-identifier-naming)
    bool start_array(std::size_t) final { return opens() || onStartArray(); }  // NOLINT(readability-identifier-naming)
    bool end_array() final { return closes() || onEndArray(); }                // NOLINT(readability-identifier-naming)
    bool parse_error(std::size_t, const std::string&,                          // NOLINT(readability-identifier-naming)
                     const nlohmann::detail::exception&) final {
        return false;
    }

protected:
    virtual bool onNull() { return false; }
    virtual bool onBoolean(bool) { return false; }
    virtual bool onNumber(double) { return false; }
    virtual bool onString(std::string&) { return false; }
    virtual bool onKey(std::string&) { return false; }
    virtual bool onStartObject() { return false; }
    virtual bool onEndObject() { return true; }
    virtual bool onStartArray() { return false; }
    virtual bool onEndArray() { return true; }

    /// Passes over the value of the member whose key was just told.
    bool skipValue() {
        skipNext_ = true;
        return true;
    }

private:
    bool skipsScalar();
    bool opens();
    bool closes();

    bool skipNext_ = false;
    std::size_t skipping_ = 0;
    bool tooDeep_ = false;
};

}  // namespace sunpane::json
