#pragma once

#include <string>
#include <string_view>

namespace sunpane {

/// Appends the key of `text` (see BriefingItem::key) to `target` and returns its size in bytes. `text` is valid UTF-8
/// and may be a part of `target`. Reads no more of a long text than its key needs.
std::size_t appendItemKey(std::string_view text, std::string& target);

/// The same by the general Unicode operations, for any text; slower.
std::string itemKeyByUnicode(std::string_view text);

}  // namespace sunpane
