#include "core/stores/Topics.h"

#include <algorithm>
#include <iterator>

#include "base/Text.h"

namespace sunpane {
namespace {

constexpr std::size_t leastCharacters = 4;

bool isSameTopic(std::size_t common, std::size_t sizeA, std::size_t sizeB) {
    const std::size_t smaller = std::min(sizeA, sizeB);
    // common / smaller >= 0.6, in whole numbers.
    return smaller > 0 && 10 * common >= 6 * smaller;
}

}  // namespace

std::set<std::string> significantWords(std::string_view text) {
    std::set<std::string> words;
    const std::string lowered = text::lowercased(text);
    for (const std::string_view run : text::alphanumericRuns(lowered)) {
        if (text::characterCount(run) >= leastCharacters) words.emplace(run);
    }
    return words;
}

bool sameTopic(const std::set<std::string>& a, const std::set<std::string>& b) {
    const auto& smaller = a.size() < b.size() ? a : b;
    const auto& larger = a.size() < b.size() ? b : a;
    const auto common =
        std::count_if(smaller.begin(), smaller.end(), [&](const std::string& word) { return larger.contains(word); });
    return isSameTopic(static_cast<std::size_t>(common), a.size(), b.size());
}

void TopicIndex::clear() {
    for (const std::uint32_t word : usedWords_)
        entriesByWord_[word].clear();
    usedWords_.clear();
    entrySizes_.clear();
    common_.clear();
    if (kept_.size() > maximumKeptTexts) {
        kept_.clear();
        numbers_.clear();
        entriesByWord_.clear();
    }
}

void TopicIndex::add(const std::string& text) {
    const auto entry = static_cast<std::uint32_t>(entrySizes_.size());
    const Words& own = words(text);
    for (const std::uint32_t word : own) {
        if (entriesByWord_[word].empty()) usedWords_.push_back(word);
        entriesByWord_[word].push_back(entry);
    }
    entrySizes_.push_back(own.size());
    common_.push_back(0);
}

bool TopicIndex::matches(const std::string& text, std::size_t limit) {
    if (limit == 0) return false;
    const Words& own = words(text);
    bool found = false;
    std::size_t wordsCounted = 0;
    for (; wordsCounted < own.size() && !found; ++wordsCounted) {
        for (const std::uint32_t entry : entriesByWord_[own[wordsCounted]]) {
            if (entry >= limit) break;
            if (!isSameTopic(++common_[entry], own.size(), entrySizes_[entry])) continue;
            found = true;
            break;
        }
    }
    for (std::size_t i = 0; i < wordsCounted; ++i) {
        for (const std::uint32_t entry : entriesByWord_[own[i]]) {
            if (entry >= limit) break;
            common_[entry] = 0;
        }
    }
    return found;
}

bool TopicIndex::areSameTopic(const std::string& a, const std::string& b) {
    const Words wordsA = words(a);
    const Words& wordsB = words(b);
    Words common;
    std::set_intersection(wordsA.begin(), wordsA.end(), wordsB.begin(), wordsB.end(), std::back_inserter(common));
    return isSameTopic(common.size(), wordsA.size(), wordsB.size());
}

const TopicIndex::Words& TopicIndex::words(const std::string& text) {
    const auto [place, isNew] = kept_.try_emplace(text);
    Words& numbers = place->second;
    if (!isNew) return numbers;
    for (const std::string& word : significantWords(text)) {
        const auto number = static_cast<std::uint32_t>(numbers_.size());
        numbers.push_back(numbers_.try_emplace(word, number).first->second);
    }
    std::sort(numbers.begin(), numbers.end());
    entriesByWord_.resize(numbers_.size());
    return numbers;
}

}  // namespace sunpane
