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

std::string journalPath(const JournalPlace& place, int index) {
    return place.stateFolder + "/" + journalName(place.path) + ".journal" + std::to_string(index);
}

std::string slotPath(const JournalPlace& place, int index, std::size_t slot) {
    return journalPath(place, index) + "-" + std::to_string(slot);
}

std::optional<JournalRecord> readRecord(const JournalPlace& place, const std::string& path) {
    const std::size_t maximumBytes = 4 * place.maximumContentBytes + Journal::minimumSlotBytes;
    const FileReading reading = place.disk.read(path, maximumBytes);
    if (reading.status != FileReading::Status::read) return std::nullopt;
    auto record = decodeJournal(reading.bytes);
    if (!record || record->path != place.path) return std::nullopt;
    if (place.isValid && !place.isValid(record->content)) return std::nullopt;
    return record;
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

std::unique_ptr<Journal> Journal::take(const JournalPlace& place, int index) {
    auto lock = place.disk.tryLock(journalPath(place, index) + ".lock");
    if (!lock) return nullptr;
    return std::unique_ptr<Journal>(new Journal(place, index, std::move(lock)));
}

std::optional<FileTime> Journal::lastChange(const JournalPlace& place, int index) {
    std::optional<FileTime> last;
    for (std::size_t slot = 0; slot < slotCount; ++slot) {
        const auto stamp = place.disk.stamp(slotPath(place, index, slot));
        // The first slot is the first one used.
        if (!stamp) break;
        if (!last || stamp->modified > *last) last = stamp->modified;
    }
    return last;
}

std::optional<JournalRecord> Journal::lastWritten(const JournalPlace& place) {
    // Records are marked one after the other, by whoever has the store file's lock.
    std::optional<std::pair<FileTime, JournalRecord>> last;
    for (int index = 0; index < maximumJournals; ++index) {
        if (!lastChange(place, index)) continue;
        for (std::size_t slot = 0; slot < slotCount; ++slot) {
            const std::string path = slotPath(place, index, slot);
            auto record = readRecord(place, path);
            const auto stamp = place.disk.stamp(path);
            if (!record || !record->isWritten || !stamp) continue;
            const std::pair marked(stamp->modified, record->number);
            if (!last || marked > std::pair(last->first, last->second.number)) {
                last.emplace(stamp->modified, std::move(*record));
            }
        }
    }
    return last ? std::optional(std::move(last->second)) : std::nullopt;
}

Journal::Journal(const JournalPlace& place, int index, std::unique_ptr<FileLock> lock)
    : place_(place), index_(index), lock_(std::move(lock)) {
    for (std::size_t i = 0; i < slotCount; ++i) {
        slots_[i].path = slotPath(place_, index_, i);
        const auto record = readRecord(place_, slots_[i].path);
        if (!record) continue;
        slots_[i].number = record->number;
        slots_[i].isWritten = record->isWritten;
    }
    for (const JournalRecord& record : unfinished()) {
        for (Slot& slot : slots_)
            slot.isLeftOver = slot.isLeftOver || slot.number == record.number;
    }
}

std::vector<JournalRecord> Journal::unfinished() const {
    std::uint64_t written = 0;
    for (const Slot& slot : slots_) {
        if (slot.isWritten) written = std::max(written, slot.number);
    }
    std::vector<JournalRecord> open;
    for (const Slot& slot : slots_) {
        if (slot.isWritten || slot.number <= written) continue;
        if (auto record = readRecord(place_, slot.path)) open.push_back(std::move(*record));
    }
    std::sort(open.begin(), open.end(), [](const auto& a, const auto& b) { return a.number > b.number; });
    // From the latest back to what it was made from. The others were replaced before they were written.
    std::vector<JournalRecord> chain;
    for (JournalRecord& record : open) {
        if (chain.empty() || chain.back().base == record.content) chain.push_back(std::move(record));
    }
    std::reverse(chain.begin(), chain.end());
    return chain;
}

bool Journal::note(const Content& content, const Content& base) {
    if (noted_ == content && notedBase_ == base) return true;
    std::uint64_t last = 0;
    for (const Slot& slot : slots_)
        last = std::max(last, slot.number);
    const JournalRecord record{last + 1, false, place_.path, base ? std::optional(*base) : std::nullopt, *content};
    const std::string bytes = encodeJournal(record);
    std::size_t size = minimumSlotBytes;
    while (size < bytes.size())
        size *= 2;
    // Two records are needed at most, and the last written one; the oldest of the others makes room.
    Slot& slot = *std::min_element(slots_.begin(), slots_.end(), [&](const Slot& a, const Slot& b) {
        return std::pair(importance(a), a.number) < std::pair(importance(b), b.number);
    });
    // Until it is whole again the slot says nothing.
    slot = {slot.path, 0, false, false, nullptr};
    bool kept = place_.disk.overwrite(slot.path, bytes, size);
    if (!kept && place_.disk.createFolders(place_.stateFolder)) kept = place_.disk.overwrite(slot.path, bytes, size);
    if (!kept) return false;
    // The latest record stands for all of them.
    for (Slot& other : slots_)
        other.isLeftOver = false;
    slot = {slot.path, record.number, false, false, content};
    noted_ = content;
    notedBase_ = base;
    notedSlot_ = static_cast<std::size_t>(&slot - slots_.data());
    return true;
}

void Journal::markWritten(const Content& content) {
    for (Slot& slot : slots_) {
        if (slot.ours == content) return markWritten(slot);
    }
}

void Journal::markAllWritten() {
    for (Slot& slot : slots_) {
        if (slot.number > 0 && !slot.isWritten) markWritten(slot);
    }
}

void Journal::markWritten(Slot& slot) {
    if (!place_.disk.overwrite(slot.path, heading(true), 0)) return;
    slot.isWritten = true;
    slot.isLeftOver = false;
    slot.ours = nullptr;
}

// How much a record is needed: not at all, for a file that loses its end, or because nothing else holds the content.
int Journal::importance(const Slot& slot) const {
    if (slot.isLeftOver || (slot.ours && (slot.ours == noted_ || slot.ours == notedBase_))) return 2;
    const auto isLater = [&](const Slot& other) { return other.isWritten && other.number > slot.number; };
    return slot.isWritten && std::none_of(slots_.begin(), slots_.end(), isLater) ? 1 : 0;
}

}  // namespace sunpane
