#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// The pieces of a text and the words among them that speak of time, for the date detector.
namespace sunpane::date_words {

/// A run of letters, a run of digits, or any other sign but a space.
struct Token {
    enum class Kind { word, number, sign, end };
    Kind kind = Kind::end;
    /// A word in lower case, the digits of a number, or a sign.
    std::string text;
    bool isCapitalised = false;
    /// Of a number; 0 when it has too many digits to be part of a date.
    int value = 0;
    bool followsSpace = true;

    bool isNumber() const { return kind == Kind::number; }
    bool isWord() const { return kind == Kind::word; }
    bool is(std::string_view other) const { return kind != Kind::number && text == other; }
};

/// `text` is valid UTF-8.
std::vector<Token> tokens(std::string_view text);

/// A day of the week (1 for Sunday), a month (1 for January), or days from today.
struct Meaning {
    enum class Kind { weekday, month, relativeDay };
    Kind kind;
    int value;
    /// Whether the word often means something else, so that it counts only beside a time or another part of a date.
    bool isWeak = false;
};

/// The names of days and months in English and in one other language. Immutable.
class Vocabulary {
public:
    /// `locale` is an ICU name.
    explicit Vocabulary(std::string_view locale);

    const std::string& locale() const { return locale_; }
    std::optional<Meaning> find(const Token& word, Meaning::Kind kind) const;
    /// Whether 11/12 is in November here.
    bool monthComesFirst() const { return monthComesFirst_; }

private:
    void addLocal(std::string_view name, Meaning meaning);

    std::string locale_;
    // One word may be two things: "mar" is March, and a Tuesday in French.
    std::unordered_multimap<std::string, Meaning> words_;
    bool monthComesFirst_ = false;
};

/// The seconds, days or months of a unit such as "minutes", "h" or "week".
struct Unit {
    double seconds = 0;
    int days = 0;
    int months = 0;
};
std::optional<Unit> unitOf(const Token& word);

/// The hour that a part of the day such as "morning" begins a plan with.
std::optional<int> hourOfPartOfDay(const Token& word);

}  // namespace sunpane::date_words
