#include "core/stores/Journal.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <charconv>
#include <cstdint>
#include <utility>

namespace sunpane {
namespace {

// The first line differs in one byte only, so that marking a record as written cannot be cut off.
std::string heading(bool isWritten) {
    return isWritten ? "dawnly journal 2 +\n" : "dawnly journal 2 -\n";
}
constexpr std::string_view noBase = "-";
// Holds the first two lines of a record, which no two records share.
constexpr std::size_t headBytes = 160;

// 64-bit FNV-1a: tells damage and mix-ups, which is all that is asked of it here.
std::uint64_t checksum(std::string_view bytes, std::uint64_t hash = 0xcbf29ce484222325) {
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    return hash;
}

std::string hexadecimal(std::uint64_t value) {
    std::string digits(16, '0');
    for (std::size_t i = digits.size(); i-- > 0; value >>= 4)
        digits[i] = "0123456789abcdef"[value & 15];
    return digits;
}

// Takes what stands before the next `end` off the front of `text`; absent when there is none.
std::optional<std::string_view> takeUntil(std::string_view& text, char end) {
    const std::size_t at = text.find(end);
    if (at == std::string_view::npos) return std::nullopt;
    const auto taken = text.substr(0, at);
    text.remove_prefix(at + 1);
    return taken;
}

std::optional<std::size_t> toSize(std::string_view digits) {
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return value;
}

}  // namespace

std::string encodeJournal(const JournalRecord& record) {
    const std::string base = record.base.value_or("");
    std::string lengths = std::to_string(record.number) + " " + std::to_string(record.path.size()) + " ";
    lengths += (record.base ? std::to_string(base.size()) : std::string(noBase)) + " ";
    lengths += std::to_string(record.content.size()) + " ";
    std::string body = record.path + base + record.content;
    std::string encoded = heading(record.isWritten);
    encoded.reserve(encoded.size() + lengths.size() + body.size() + 32);
    encoded += lengths + hexadecimal(checksum(body, checksum(lengths))) + "\n";
    return encoded + body;
}

std::optional<JournalRecord> decodeJournal(std::string_view bytes) {
    const bool isWritten = bytes.starts_with(heading(true));
    if (!isWritten && !bytes.starts_with(heading(false))) return std::nullopt;
    bytes.remove_prefix(heading(true).size());
    const std::string_view lengthsStart = bytes;
    std::array<std::string_view, 4> words;
    for (auto& word : words) {
        const auto taken = takeUntil(bytes, ' ');
        if (!taken) return std::nullopt;
        word = *taken;
    }
    const std::string_view lengths = lengthsStart.substr(0, lengthsStart.size() - bytes.size());
    const auto sum = takeUntil(bytes, '\n');
    const bool hasBase = words[2] != noBase;
    const auto number = toSize(words[0]);
    const auto path = toSize(words[1]);
    const auto base = hasBase ? toSize(words[2]) : std::optional<std::size_t>(0);
    const auto content = toSize(words[3]);
    if (!sum || !number || !path || !base || !content || *path > bytes.size() || *base > bytes.size() - *path ||
        *content > bytes.size() - *path - *base) {
        return std::nullopt;
    }
    bytes = bytes.substr(0, *path + *base + *content);
    if (*sum != hexadecimal(checksum(bytes, checksum(lengths)))) return std::nullopt;
    JournalRecord record{*number, isWritten, std::string(bytes.substr(0, *path)), std::nullopt,
                         std::string(bytes.substr(*path + *base))};
    if (hasBase) record.base = bytes.substr(*path, *base);
    return record;
}

std::string journalName(std::string_view path) {
    return std::string(path.substr(path.rfind('/') + 1)) + "-" + hexadecimal(checksum(path));
}

bool isRemnantOf(std::string_view bytes, std::string_view content) {
    const std::size_t lastKept = bytes.find_last_not_of('\0');
    const auto kept = bytes.substr(0, lastKept == std::string_view::npos ? 0 : lastKept + 1);
    return bytes.size() <= content.size() && content.starts_with(kept);
}

Journal::Journal(FileSystem& disk, std::string stateFolder, std::string path, std::size_t maximumContentBytes,
                 std::function<bool(std::string_view)> isValid)
    : disk_(disk),
      stateFolder_(std::move(stateFolder)),
      path_(std::move(path)),
      maximumSlotBytes_(4 * maximumContentBytes + minimumSlotBytes),
      isValid_(std::move(isValid)) {
    for (std::size_t i = 0; i < slotCount; ++i) {
        slots_[i].path = stateFolder_ + "/" + journalName(path_) + ".journal" + std::to_string(i);
    }
}

void Journal::refresh() {
    for (Slot& slot : slots_) {
        std::string head = disk_.beginning(slot.path, headBytes);
        if (head == slot.head) continue;
        const auto record = read(slot);
        if (noted_ != nullptr && slot.ours == noted_) noted_ = nullptr;
        slot = {slot.path, std::move(head), record ? record->number : 0, record && record->isWritten, nullptr};
        lastNumber_ = std::max(lastNumber_, slot.number);
    }
}

std::vector<JournalRecord> Journal::unfinished() const {
    std::uint64_t written = 0;
    for (const Slot& slot : slots_) {
        if (slot.isWritten) written = std::max(written, slot.number);
    }
    std::vector<const Slot*> open;
    for (const Slot& slot : slots_) {
        if (!slot.isWritten && slot.number > written) open.push_back(&slot);
    }
    const auto isForeign = [](const Slot* slot) { return slot->ours == nullptr; };
    if (std::none_of(open.begin(), open.end(), isForeign)) return {};
    std::sort(open.begin(), open.end(), [](const Slot* a, const Slot* b) { return a->number < b->number; });

    // Of two contents made from the same one, the later took the place of the earlier and of all that built on it.
    std::vector<std::pair<const Slot*, JournalRecord>> standing;
    for (const Slot* slot : open) {
        auto record = read(*slot);
        if (!record) continue;
        const auto replaced = std::find_if(standing.begin(), standing.end(),
                                           [&](const auto& earlier) { return earlier.second.base == record->base; });
        standing.erase(replaced, standing.end());
        standing.emplace_back(slot, std::move(*record));
    }
    std::vector<JournalRecord> foreign;
    for (auto& [slot, record] : standing) {
        if (isForeign(slot)) foreign.push_back(std::move(record));
    }
    return foreign;
}

std::optional<JournalRecord> Journal::lastWritten() const {
    const Slot* latest = nullptr;
    for (const Slot& slot : slots_) {
        if (slot.isWritten && (latest == nullptr || slot.number > latest->number)) latest = &slot;
    }
    return latest == nullptr ? std::nullopt : read(*latest);
}

bool Journal::note(const Content& content, const Content& base, const Content& inUse) {
    if (noted_ == content && notedBase_ == base) return true;
    Slot& slot = nextSlot(inUse);
    const JournalRecord record{lastNumber_ + 1, false, path_, base ? std::optional(*base) : std::nullopt, *content};
    const std::string bytes = encodeJournal(record);
    std::size_t size = minimumSlotBytes;
    while (size < bytes.size())
        size *= 2;
    // Until it is whole again the slot says nothing.
    slot = {slot.path, "", 0, false, nullptr};
    bool kept = disk_.overwrite(slot.path, bytes, size);
    if (!kept && disk_.createFolders(stateFolder_)) kept = disk_.overwrite(slot.path, bytes, size);
    if (!kept) return false;
    lastNumber_ = record.number;
    slot = {slot.path, disk_.beginning(slot.path, headBytes), record.number, false, content};
    noted_ = content;
    notedBase_ = base;
    notedSlot_ = static_cast<std::size_t>(&slot - slots_.data());
    return true;
}

void Journal::markWritten(const Content& content) {
    for (const Slot& slot : slots_) {
        if (slot.ours == content) return markWritten(slot.number);
    }
}

void Journal::markWritten(std::uint64_t number) {
    for (Slot& slot : slots_) {
        if (slot.number != number || !disk_.overwrite(slot.path, heading(true), 0)) continue;
        slot.isWritten = true;
        slot.ours = nullptr;
        slot.head = disk_.beginning(slot.path, headBytes);
    }
}

void Journal::markAllWritten() {
    for (const Slot& slot : slots_) {
        if (slot.number > 0 && !slot.isWritten) markWritten(slot.number);
    }
}

std::optional<JournalRecord> Journal::read(const Slot& slot) const {
    const FileReading reading = disk_.read(slot.path, maximumSlotBytes_);
    if (reading.status != FileReading::Status::read) return std::nullopt;
    auto record = decodeJournal(reading.bytes);
    if (!record || record->path != path_ || (isValid_ && !isValid_(record->content))) return std::nullopt;
    return record;
}

// The oldest slot but those of the content being written, of our latest record and of the last content written.
Journal::Slot& Journal::nextSlot(const Content& inUse) {
    const Slot* lastWritten = nullptr;
    for (const Slot& slot : slots_) {
        if (slot.isWritten && (lastWritten == nullptr || slot.number > lastWritten->number)) lastWritten = &slot;
    }
    const auto counts = [&](const Slot& slot) {
        return &slot == lastWritten || (slot.ours != nullptr && (slot.ours == inUse || slot.ours == noted_));
    };
    // At most three count, so one is left.
    static_assert(slotCount > 3);
    return *std::min_element(slots_.begin(), slots_.end(), [&](const Slot& a, const Slot& b) {
        return std::pair(counts(a), a.number) < std::pair(counts(b), b.number);
    });
}

}  // namespace sunpane
