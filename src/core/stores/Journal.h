#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileSystem.h"

namespace sunpane {

/// What a write to a store's file is about to do, noted before the file is touched, so that a write that was cut off
/// can be brought to its end. A plain value.
struct JournalRecord {
    /// Later records have higher numbers.
    std::uint64_t number = 0;
    /// Whether the file is known to hold the content.
    bool isWritten = false;
    /// The file that is written.
    std::string path;
    /// What the file holds when the new content is put into it; absent when there is no file.
    std::optional<std::string> base;
    /// The new content, whole.
    std::string content;

    friend bool operator==(const JournalRecord&, const JournalRecord&) = default;
};

std::string encodeJournal(const JournalRecord& record);

/// Absent when the bytes do not begin with a whole, unharmed record.
std::optional<JournalRecord> decodeJournal(std::string_view bytes);

/// A file name for what belongs to the store file at `path`, distinct for every path: "todos.json-6f1c3a5e2b90d784".
std::string journalName(std::string_view path);

/// Whether `bytes` is what a write of `content` leaves behind when it is cut off: a beginning of it, which a power cut
/// may have followed by zeros. The whole content counts as well.
bool isRemnantOf(std::string_view bytes, std::string_view content);

/// The journal of one store file: four files of which the one that matters least is overwritten next, so that a record
/// that is cut off harms none that counts. Overwriting is what a disk does quickly even when it is busy.
///
/// Used by one thread at a time. Programs that share a journal take turns by the store file's lock; each calls
/// `refresh` first.
class Journal {
public:
    using Content = std::shared_ptr<const std::string>;

    static constexpr std::size_t slotCount = 4;
    /// Slots are this long at least, and grow by doubling.
    static constexpr std::size_t minimumSlotBytes = 16384;

    /// `path` names the store file; `isValid` judges the contents of records.
    Journal(FileSystem& disk, std::string stateFolder, std::string path, std::size_t maximumContentBytes,
            std::function<bool(std::string_view)> isValid);

    /// Takes notice of what other programs have written.
    void refresh();

    /// The records of others whose contents may not be in the file yet, in the order in which they are to be written.
    std::vector<JournalRecord> unfinished() const;

    /// The last content that is known to have been in the file; absent when there is none.
    std::optional<JournalRecord> lastWritten() const;

    /// Notes that `content`, made from `base` (null: no file), is about to be written. Keeps the record of `inUse`,
    /// which is being written right now. False when that was not possible.
    bool note(const Content& content, const Content& base, const Content& inUse);

    /// Whether the latest record of ours is of this content.
    bool hasNoted(const Content& content) const { return content != nullptr && noted_ == content; }

    /// Where the latest record of ours is, for forcing it to the disk.
    const std::string& notedPath() const { return slots_[notedSlot_].path; }

    /// Notes that the file holds the content of our record of it, or of the record with that number.
    void markWritten(const Content& content);
    void markWritten(std::uint64_t number);
    /// Notes that the file holds something newer than all records.
    void markAllWritten();

private:
    struct Slot {
        std::string path;
        // As last seen or written here; tells whether another program wrote the slot.
        std::string head;
        std::uint64_t number = 0;
        bool isWritten = false;
        Content ours;
    };

    std::optional<JournalRecord> read(const Slot& slot) const;
    Slot& nextSlot(const Content& inUse);

    FileSystem& disk_;
    std::string stateFolder_;
    std::string path_;
    std::size_t maximumSlotBytes_;
    std::function<bool(std::string_view)> isValid_;
    std::array<Slot, slotCount> slots_;
    Content noted_;
    Content notedBase_;
    std::size_t notedSlot_ = 0;
    std::uint64_t lastNumber_ = 0;
};

}  // namespace sunpane
