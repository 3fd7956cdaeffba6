#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/briefing/Briefing.h"

/// The grammar of a briefing. All functions are pure, may run on any thread and expect valid UTF-8; nothing is ever
/// rejected, only read as text. Views that are returned point into the argument.
namespace sunpane::briefing {

/// The two texts that a file's content holds.
struct Document {
    std::string title;
    std::string markdown;
    friend bool operator==(const Document&, const Document&) = default;
};

/// Takes the first line that is not blank as the title when it begins with "#", and the rest as the markdown, with
/// every kind of newline written as "\n".
Document splitDocument(std::string_view text);

std::vector<BriefingSection> sections(std::string_view markdown);
std::vector<BriefingActionItem> actionItems(std::string_view markdown);

// What one line means. A *trimmed* line has no whitespace at its ends.

/// The title of a heading of two to four "#" and a space.
std::optional<std::string_view> markedHeadingTitle(std::string_view trimmedLine);

/// The title of a line that is one bold phrase, possibly behind a short symbol and before a colon.
std::optional<std::string> boldHeaderTitle(std::string_view trimmedLine);

/// The text of the card that a bullet line starts.
std::optional<std::string_view> cardText(std::string_view trimmedLine);

/// A line that separates and says nothing.
bool isRule(std::string_view trimmedLine);

std::optional<BriefingActionItem> actionItem(std::string_view line);

/// Whether a section of this title holds action items, which are not shown as cards.
bool isActionItemsTitle(std::string_view title);

/// Whether a section of this title looks back on the day; the first one of a briefing stands above the others.
bool isRecapTitle(std::string_view title);

}  // namespace sunpane::briefing

namespace sunpane {

/// Writes the cards of one briefing into texts that they share.
class BriefingItemWriter {
public:
    /// Cards share a text until it is this large (bytes), so that one card that is kept does not keep a whole large
    /// file.
    static constexpr std::size_t storageSize = std::size_t{64} * 1024;

    /// `expectedSize` is how many bytes all cards and keys will take, roughly.
    explicit BriefingItemWriter(std::size_t expectedSize);

    /// Starts a card; `add` continues it on a new line and `finish` makes it.
    void begin(std::string_view text);
    void add(std::string_view text);
    BriefingItem finish();

private:
    std::size_t reserve_;
    std::shared_ptr<std::string> storage_ = std::make_shared<std::string>();
    std::size_t start_ = 0;
};

}  // namespace sunpane
