#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sunpane {

/// What a write to a store's file is about to do, noted before the file is touched, so that a write that was cut off
/// can be brought to its end. A plain value.
struct JournalRecord {
    /// The file that is written.
    std::string path;
    /// What the file held when the new content was made from it; absent when there was no file.
    std::optional<std::string> base;
    /// The new content, whole.
    std::string content;

    friend bool operator==(const JournalRecord&, const JournalRecord&) = default;
};

std::string encodeJournal(std::string_view path, const std::string* base, std::string_view content);

/// Absent when the bytes are not a whole, unharmed record.
std::optional<JournalRecord> decodeJournal(std::string_view bytes);

/// A file name for what belongs to the store file at `path`, distinct for every path: "todos.json-6f1c3a5e2b90d784".
std::string journalName(std::string_view path);

/// Whether `bytes` is what a write of `content` leaves behind when it is cut off: a beginning of it, which a power cut
/// may have followed by zeros. The whole content counts as well.
bool isRemnantOf(std::string_view bytes, std::string_view content);

}  // namespace sunpane
