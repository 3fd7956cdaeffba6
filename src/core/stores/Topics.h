#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sunpane {

/// The words by which a text's topic is judged: its runs of letters, marks and numbers of at least four characters, in
/// lower case. `text` is valid UTF-8.
std::set<std::string> significantWords(std::string_view text);

/// Whether two texts with these words speak of the same thing: at least six tenths of the smaller set are in both. A
/// text without such words speaks of nothing.
bool sameTopic(const std::set<std::string>& a, const std::set<std::string>& b);

/// Tells whether one of many texts is of the same topic as another, by the rule of `sameTopic`, without comparing with
/// each of them: only texts that share a word are looked at. One thread.
///
/// Word sets are kept by text, since the same texts are asked about after every change.
class TopicIndex {
public:
    /// A text's significant words as numbers, ascending.
    using Words = std::vector<std::uint32_t>;

    /// Once more texts than this were seen, all their word sets are dropped at the next `clear`.
    static constexpr std::size_t maximumKeptTexts = 65536;

    /// Forgets all entries.
    void clear();
    /// Adds an entry behind the others.
    void add(const std::string& text);
    /// Whether one of the first `limit` entries is of the same topic as `text`.
    bool matches(const std::string& text, std::size_t limit);

    bool areSameTopic(const std::string& a, const std::string& b);

private:
    const Words& words(const std::string& text);

    std::unordered_map<std::string, std::uint32_t> numbers_;
    std::unordered_map<std::string, Words> kept_;
    // By word, the entries that hold it, ascending.
    std::vector<std::vector<std::uint32_t>> entriesByWord_;
    std::vector<std::uint32_t> usedWords_;
    std::vector<std::size_t> entrySizes_;
    // How many words each entry has in common with the text being asked about; all 0 between questions.
    std::vector<std::uint32_t> common_;
};

}  // namespace sunpane
