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

/// Where the journals of one store file are, and what they may hold.
struct JournalPlace {
    FileSystem& disk;
    std::string stateFolder;
    /// The store file.
    std::string path;
    std::size_t maximumContentBytes = 0;
    /// Judges the contents of records; null: all are good.
    std::function<bool(std::string_view)> isValid;
};

/// What one program notes about its writes to one store file. Programs that share the file have a journal each, so that
/// a change need not wait for another program to be safe from its own program's death; the journal of a program that
/// died is taken over by another.
///
/// Four files, of which the one that matters least is overwritten next, so that a record that is cut off harms none
/// that counts. Overwriting is what a disk does quickly even when it is busy. Used by one thread at a time.
class Journal {
public:
    using Content = std::shared_ptr<const std::string>;

    /// How many programs at once have a journal of the same file; others do without.
    static constexpr int maximumJournals = 8;
    static constexpr std::size_t slotCount = 4;
    /// Slots are this long at least, and grow by doubling.
    static constexpr std::size_t minimumSlotBytes = 16384;

    /// Takes the journal at `index` for as long as the object lives. Null when a living program has it.
    static std::unique_ptr<Journal> take(const JournalPlace& place, int index);
    /// When the journal at `index` last changed; absent when it was never used.
    static std::optional<FileTime> lastChange(const JournalPlace& place, int index);

    /// The last content that is known to have been in the file, by the journals of all programs.
    static std::optional<JournalRecord> lastWritten(const JournalPlace& place);

    int index() const { return index_; }

    /// The records whose contents are to be put into the file, in that order, to end what was begun: the latest, which
    /// holds all that its program knew, and before it those that it was made from.
    std::vector<JournalRecord> unfinished() const;

    /// Notes that `content` is to be written, made from `base` (null: no file), which is in the file already or noted
    /// itself. False when that was not possible.
    bool note(const Content& content, const Content& base);

    /// The file that holds the latest record, for forcing it to the disk.
    const std::string& notedPath() const { return slots_[notedSlot_].path; }

    /// Notes that the file holds the content.
    void markWritten(const Content& content);
    /// Notes that the file holds something newer than all records.
    void markAllWritten();

private:
    struct Slot {
        std::string path;
        std::uint64_t number = 0;
        bool isWritten = false;
        // Whether what its program left unfinished needs it.
        bool isLeftOver = false;
        Content ours;
    };

    Journal(const JournalPlace& place, int index, std::unique_ptr<FileLock> lock);
    int importance(const Slot& slot) const;
    void markWritten(Slot& slot);

    JournalPlace place_;
    int index_;
    std::unique_ptr<FileLock> lock_;
    std::array<Slot, slotCount> slots_;
    Content noted_;
    Content notedBase_;
    std::size_t notedSlot_ = 0;
};

}  // namespace sunpane
