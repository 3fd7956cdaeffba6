#include "core/stores/StoreFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <utility>

#include "StoreFixture.h"
#include "core/stores/Journal.h"

namespace sunpane::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A store as small as it can be: a set of letters, written between brackets so that a beginning does not decode.
struct LetterStore {
    explicit LetterStore(StoreFixture& machine, const char* fileName = "letters.json")
        : file(*machine.files, StoreFixture::path(fileName), format()) {
        machine.files->ports().files.createFolders(StoreFixture::folder);
        file.load([this](const StoreFile::Incoming& incoming) { return take(incoming); });
        file.onConflict([this](const StoreFile::Incoming& incoming) {
            take(incoming);
            save();
        });
    }

    static std::set<char> letters(std::string_view text) { return {text.begin() + 1, text.end() - 1}; }
    static std::string text(const std::set<char>& letters) {
        return "[" + std::string(letters.begin(), letters.end()) + "]";
    }
    static bool decodes(std::string_view content) { return content.starts_with('[') && content.ends_with(']'); }
    static std::set<char> merged(const std::string* base, const std::set<char>& ours, const std::set<char>& theirs) {
        const auto before = base != nullptr ? letters(*base) : std::set<char>{};
        std::set<char> result = theirs;
        for (const char letter : ours) {
            if (!before.contains(letter)) result.insert(letter);
        }
        std::erase_if(result, [&](char letter) { return before.contains(letter) && !ours.contains(letter); });
        return result;
    }
    static StoreFormat format() {
        return {decodes, [](const std::string* base, std::string_view ours, std::string_view theirs) {
                    return text(merged(base, letters(ours), letters(theirs)));
                }};
    }

    bool take(const StoreFile::Incoming& incoming) {
        if (!decodes(incoming.content)) return false;
        state =
            incoming.mustMerge ? merged(incoming.base, state, letters(incoming.content)) : letters(incoming.content);
        return true;
    }
    void add(char letter) {
        state.insert(letter);
        save();
    }
    void save() {
        file.writeAsync(text(state), [this] { ++writes; });
    }

    StoreFile file;
    std::set<char> state;
    int writes = 0;
};

constexpr const char* name = "letters.json";

TEST(Journal, ReadsBackWhatWasNotedAndNothingDamaged) {
    for (const auto& base : {std::optional<std::string>(), std::optional<std::string>("old")}) {
        const JournalRecord record{7, false, "/a folder/x.json", base, "new\ncontent"};
        const std::string bytes = encodeJournal(record);
        EXPECT_EQ(decodeJournal(bytes), record);
        EXPECT_EQ(decodeJournal(bytes + "left from a longer one"), record);
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            EXPECT_FALSE(decodeJournal(bytes.substr(0, i))) << i;
            std::string damaged = bytes;
            damaged[i] ^= 4;
            EXPECT_NE(decodeJournal(damaged), record) << "byte " << i << " went unnoticed";
        }
    }
    EXPECT_NE(journalName("/a/x.json"), journalName("/b/x.json"));
}

Journal::Content content(const char* text) {
    return std::make_shared<const std::string>(text);
}

JournalPlace placeOf(StoreFixture& machine) {
    return {machine.disk, StoreFixture::stateFolder, StoreFixture::path(name), 1000, nullptr};
}

// One content is in the file, a second is being written, a third waits, and the disk dies at every step of a fourth
// that replaces it: what is needed to end the writes is still known, and so is the last content written. The same when
// the journal is then taken over and the process dies while it notes the next.
TEST(Journal, ARecordThatIsCutOffHarmsNoneThatCounts) {
    for (std::uint64_t steps = 1; steps < 5; ++steps) {
        StoreFixture machine;
        auto journal = Journal::take(placeOf(machine), 0);
        const auto one = content("one");
        const auto two = content("two");
        ASSERT_TRUE(journal->note(one, nullptr));
        journal->markWritten(one);
        ASSERT_TRUE(journal->note(two, one));
        ASSERT_TRUE(journal->note(content("three"), two));
        ASSERT_TRUE(journal->note(content("four"), two));
        const auto expectChain = [&](const char* last) {
            EXPECT_FALSE(Journal::take(placeOf(machine), 0)) << "its program lives";
            journal = nullptr;
            machine.disk.revive();
            journal = Journal::take(placeOf(machine), 0);
            const auto unfinished = journal->unfinished();
            ASSERT_EQ(unfinished.size(), 2U) << steps;
            EXPECT_EQ(unfinished[0].content, "two") << steps;
            EXPECT_EQ(unfinished[1].content, last) << steps;
            EXPECT_EQ(Journal::lastWritten(placeOf(machine))->content, "one") << steps;
        };
        machine.disk.dieAfter(steps);
        journal->note(content("five"), two);
        expectChain(steps == 4 ? "five" : "four");
        if (steps == 4) continue;
        machine.disk.dieAfter(steps);
        journal->note(content("six"), content("found"));
        expectChain("four");
        ASSERT_TRUE(journal->note(content("seven"), content("found")));
        ASSERT_EQ(journal->unfinished().size(), 1U) << "the latest holds all, and was made from what is in the file";
        journal->markAllWritten();
        EXPECT_THAT(journal->unfinished(), IsEmpty());
        EXPECT_EQ(Journal::lastWritten(placeOf(machine))->content, "seven");
    }
}

TEST(Journal, KnowsTheRemnantOfACutOffWrite) {
    const std::string nul(1, '\0');
    EXPECT_TRUE(isRemnantOf("", "abc"));
    EXPECT_TRUE(isRemnantOf("ab", "abc"));
    EXPECT_TRUE(isRemnantOf("a" + nul + nul, "abc"));
    EXPECT_FALSE(isRemnantOf("abx", "abc"));
    EXPECT_FALSE(isRemnantOf("abcd", "abc"));
    EXPECT_FALSE(isRemnantOf("a" + nul + nul + nul, "abc"));
}

// The process dies at every single step of two writes that overlap: what got into the journal is never lost, and what
// the file holds after the next start decodes.
TEST(StoreFile, LosesNothingWhereverTheProcessDies) {
    constexpr std::uint64_t noteSteps = 4;
    for (std::uint64_t steps = 1;; ++steps) {
        StoreFixture machine;
        auto store = std::make_unique<LetterStore>(machine);
        store->add('a');
        machine.settle();
        std::uint64_t stepsAtSecond = 0;
        machine.disk.whileSyncing = [&](const std::string&) {
            if (stepsAtSecond > 0) return;
            stepsAtSecond = machine.disk.steps();
            store->add('c');
            machine.settle();
        };
        const std::uint64_t start = machine.disk.steps();
        machine.disk.dieAfter(steps);
        store->add('b');
        machine.settle();
        machine.disk.whileSyncing = nullptr;
        if (!machine.disk.isDead()) {
            EXPECT_GT(steps, 4 * noteSteps);
            break;
        }
        store.reset();
        machine.restart();
        LetterStore next(machine);
        EXPECT_THAT(next.state, Contains('a')) << steps;
        EXPECT_TRUE(steps <= noteSteps || next.state.contains('b')) << steps;
        // The rest of the sync, then the note.
        const std::uint64_t secondSafe = stepsAtSecond - start + 1 + noteSteps;
        EXPECT_TRUE(stepsAtSecond == 0 || steps <= secondSafe || next.state.contains('c')) << steps;
        EXPECT_TRUE(next.state.contains('b') || !next.state.contains('c')) << steps;
        machine.settle();
        EXPECT_EQ(machine.content(name), LetterStore::text(next.state)) << steps;
        EXPECT_THAT(machine.disk.filesIn(StoreFixture::folder), ElementsAre(name)) << steps;
    }
}

// The same while another program changes the file between the death and the next start.
TEST(StoreFile, MergesAnInterruptedWriteWithWhatAnotherProgramWroteSince) {
    for (std::uint64_t steps = 6; steps < 8; ++steps) {
        StoreFixture machine;
        auto store = std::make_unique<LetterStore>(machine);
        store->add('a');
        machine.settle();
        machine.disk.dieAfter(steps);
        store->add('b');
        machine.settle();
        store.reset();
        machine.disk.writeExternally(StoreFixture::path(name), "[ac]");
        machine.restart();
        EXPECT_EQ(LetterStore(machine).state, (std::set{'a', 'b', 'c'})) << steps;
        EXPECT_EQ(machine.content(name), "[abc]") << steps;
    }
}

struct Fault {
    const char* description;
    std::function<void(StoreFixture&)> set;
    std::function<void(StoreFixture&)> clear;
};

class StoreFileUnderFault : public ::testing::TestWithParam<Fault> {};

TEST_P(StoreFileUnderFault, WritesWhatItCouldNotAsSoonAsItCan) {
    StoreFixture machine;
    LetterStore store(machine);
    store.add('a');
    machine.settle();
    GetParam().set(machine);
    store.add('b');
    machine.pass(60);
    store.add('c');
    machine.pass(60);
    EXPECT_EQ(store.state, (std::set{'a', 'b', 'c'}));
    EXPECT_TRUE(store.file.hasUnwritten());
    EXPECT_EQ(store.writes, 1);
    GetParam().clear(machine);
    machine.pass(StoreFile::retryInterval);
    EXPECT_EQ(machine.content(name), "[abc]");
    EXPECT_FALSE(store.file.hasUnwritten());
    EXPECT_EQ(store.writes, 3);
}

TEST_P(StoreFileUnderFault, TellsThoseWhoStillWaitForTheWriting) {
    StoreFixture machine;
    LetterStore store(machine);
    GetParam().set(machine);
    store.add('a');
    std::string told;
    const auto first = store.file.whenWritten([&] { told += '1'; });
    // Whoever does not wait any longer leaves nothing behind.
    const auto lapsed = std::make_shared<int>();
    for (int i = 0; i < 3; ++i)
        (void)store.file.whenWritten([lapsed, &told] { told += 'x'; });
    EXPECT_EQ(lapsed.use_count(), 1);
    const auto second = store.file.whenWritten([&] { told += '2'; });
    machine.pass(60);
    EXPECT_EQ(told, "");
    GetParam().clear(machine);
    machine.pass(StoreFile::retryInterval);
    EXPECT_EQ(told, "12");
    const auto third = store.file.whenWritten([&] { told += '3'; });
    EXPECT_EQ(told, "123") << "at once";
}

TEST_P(StoreFileUnderFault, KeepsWhatItCouldNotWriteForTheNextStart) {
    StoreFixture machine;
    auto store = std::make_unique<LetterStore>(machine);
    store->add('a');
    machine.settle();
    GetParam().set(machine);
    // The journal is elsewhere; a disk that is full for both is a case of its own.
    machine.disk.freeBytes = std::max<std::size_t>(machine.disk.freeBytes, 4096);
    store->add('b');
    machine.pass(1);
    store.reset();
    machine.restart();
    LetterStore next(machine);
    EXPECT_EQ(next.state, (std::set{'a', 'b'}));
    GetParam().clear(machine);
    machine.pass(StoreFile::retryInterval);
    EXPECT_EQ(machine.content(name), "[ab]");
}

INSTANTIATE_TEST_SUITE_P(
    Faults, StoreFileUnderFault,
    ::testing::Values(Fault{"FullDisk", [](StoreFixture& m) { m.disk.freeBytes = 2; },
                            [](StoreFixture& m) { m.disk.freeBytes = 1 << 20; }},
                      Fault{"ReadOnlyFolder", [](StoreFixture& m) { m.disk.readOnlyFolders.insert(m.folder); },
                            [](StoreFixture& m) { m.disk.readOnlyFolders.clear(); }},
                      Fault{"NoPermission", [](StoreFixture& m) { m.disk.forbiddenFiles.insert(m.path(name)); },
                            [](StoreFixture& m) { m.disk.forbiddenFiles.clear(); }},
                      Fault{"ADirectoryInItsPlace",
                            [](StoreFixture& m) {
                                m.disk.removeExternally(m.path(name));
                                m.disk.specialFiles.insert(m.path(name));
                            },
                            [](StoreFixture& m) { m.disk.specialFiles.clear(); }}),
    [](const auto& test) { return test.param.description; });

TEST(StoreFile, AVanishedFolderIsWrittenToOnceItIsBack) {
    StoreFixture machine;
    LetterStore store(machine);
    store.add('a');
    machine.settle();
    machine.disk.removeExternally(StoreFixture::path(name));
    EXPECT_FALSE(store.file.wentWithItsFolder()) << "only the file was removed";
    machine.disk.removeFolder(StoreFixture::folder);
    EXPECT_FALSE(store.file.wentWithItsFolder());
    machine.disk.makeFolder(StoreFixture::folder);
    machine.disk.writeExternally(StoreFixture::path(".letters.json.icloud"), "");
    EXPECT_FALSE(store.file.wentWithItsFolder()) << "it is still to be downloaded";

    machine.disk.removeFolder(StoreFixture::folder);
    EXPECT_FALSE(store.file.wentWithItsFolder());
    store.add('b');
    machine.pass(10);
    machine.disk.makeFolder(StoreFixture::folder);
    EXPECT_FALSE(store.file.wentWithItsFolder()) << "a write is on its way";
    machine.pass(StoreFile::retryInterval);
    EXPECT_EQ(machine.content(name), "[ab]");

    machine.disk.removeFolder(StoreFixture::folder);
    EXPECT_FALSE(store.file.wentWithItsFolder());
    machine.disk.makeFolder(StoreFixture::folder);
    EXPECT_TRUE(store.file.wentWithItsFolder());
    EXPECT_FALSE(store.file.wentWithItsFolder()) << "told once";
}

TEST(StoreFile, WithoutAStateFolderTheFileIsReplacedAsAWhole) {
    StoreFixture machine;
    machine.disk.readOnlyFolders.insert(StoreFixture::stateFolder);
    LetterStore store(machine);
    store.add('a');
    machine.settle();
    for (std::uint64_t steps = 1; steps < 6; ++steps) {
        machine.disk.dieAfter(steps);
        store.add('b');
        machine.settle();
        EXPECT_THAT(machine.content(name), ::testing::AnyOf("[a]", "[ab]")) << steps;
        machine.disk.revive();
    }
    machine.pass(StoreFile::retryInterval);
    EXPECT_EQ(machine.content(name), "[ab]");

    // Once there is one again, it is used.
    machine.disk.readOnlyFolders = {StoreFixture::folder};
    store.add('c');
    machine.settle();
    EXPECT_TRUE(Journal::lastChange(placeOf(machine), 0));
    EXPECT_FALSE(Journal::take(placeOf(machine), 0)) << "it is ours";
}

TEST(StoreFile, KeepsAnUnreadableFileAsideOnceBeforeReplacingIt) {
    StoreFixture machine;
    machine.disk.createFolders(StoreFixture::folder);
    machine.disk.writeExternally(StoreFixture::path(name), "not letters");
    machine.platform.time.advanceTo(Instant::fromUnix(1795338900));
    LetterStore store(machine);
    EXPECT_THAT(store.state, IsEmpty());
    machine.pass(10);
    EXPECT_THAT(machine.disk.filesIn(StoreFixture::folder), ElementsAre(name)) << "before the first save";
    store.add('a');
    machine.settle();
    store.add('b');
    machine.settle();
    EXPECT_EQ(machine.content(name), "[ab]");
    EXPECT_EQ(machine.content("letters.unreadable-2026-11-22T09-15-10Z.json"), "not letters");
    EXPECT_EQ(machine.disk.filesIn(StoreFixture::folder).size(), 2U);

    // A folder that takes no new file, but whose files can be written, has its copy kept with the journals.
    machine.disk.writeExternally(StoreFixture::path(name), "nor are these");
    machine.disk.forbiddenFiles.insert(StoreFixture::path("letters.unreadable-2026-11-22T09-15-10Z-2.json"));
    store.add('c');
    machine.settle();
    EXPECT_EQ(machine.content(name), "[abc]");
    EXPECT_EQ(
        machine.disk.content(std::string(StoreFixture::stateFolder) + "/letters.unreadable-2026-11-22T09-15-10Z.json"),
        "nor are these");
}

TEST(StoreFile, RecoversATruncatedFileFromTheJournal) {
    StoreFixture machine;
    {
        LetterStore store(machine);
        store.add('a');
        store.add('b');
        machine.settle();
    }
    for (const char* remnant : {"", "[", "[a", "[ab"}) {
        machine.disk.writeExternally(StoreFixture::path(name), remnant);
        machine.restart();
        EXPECT_EQ(LetterStore(machine).state, (std::set{'a', 'b'})) << remnant;
        EXPECT_EQ(machine.content(name), "[ab]") << remnant;
    }
    // What another program wrote whole is its last word, and so is a removal.
    machine.disk.writeExternally(StoreFixture::path(name), "[a]");
    machine.restart();
    EXPECT_EQ(LetterStore(machine).state, (std::set{'a'}));
    machine.disk.removeExternally(StoreFixture::path(name));
    machine.restart();
    EXPECT_THAT(LetterStore(machine).state, IsEmpty());
}

TEST(StoreFile, MergesWhatAnotherProgramWroteBeforeOurWriteRan) {
    StoreFixture machine;
    machine.disk.granularity = 1;
    LetterStore store(machine);
    store.add('a');
    machine.settle();
    // The same length and the same second: only the content tells.
    store.add('b');
    machine.disk.writeExternally(StoreFixture::path(name), "[c]");
    machine.settle();
    EXPECT_EQ(store.state, (std::set{'b', 'c'}));
    EXPECT_EQ(machine.content(name), "[bc]");
}

TEST(StoreFile, DoesNotTakeWhatAnotherProgramWroteDuringTheSyncForItsOwn) {
    StoreFixture machine;
    LetterStore store(machine);
    machine.disk.whileSyncing = [&](const std::string& path) {
        if (path == StoreFixture::path(name)) machine.disk.writeExternally(path, "[xy]");
    };
    store.add('a');
    machine.settle();
    EXPECT_TRUE(store.file.changedOnDisk());
    EXPECT_LT(store.file.knownTime(), store.file.modificationTime());
}

TEST(StoreFile, ReloadsWhatChangedAndKeepsWhatIsNotWrittenYet) {
    StoreFixture machine;
    LetterStore store(machine);
    const auto take = [&](const StoreFile::Incoming& incoming) { return store.take(incoming); };
    store.add('a');
    machine.settle();
    EXPECT_FALSE(store.file.changedOnDisk());
    machine.disk.writeExternally(StoreFixture::path(name), "[xy]");
    EXPECT_TRUE(store.file.changedOnDisk());
    EXPECT_EQ(store.file.reload(take), StoreFile::Reload::taken);
    EXPECT_EQ(store.state, (std::set{'x', 'y'}));
    EXPECT_FALSE(store.file.changedOnDisk());

    store.add('b');
    EXPECT_FALSE(store.file.changedOnDisk()) << "the write on its way looks for itself";
    EXPECT_EQ(store.file.reload(take), StoreFile::Reload::taken);
    EXPECT_EQ(store.state, (std::set{'b', 'x', 'y'})) << "the file is what memory was made from";
    machine.disk.writeExternally(StoreFixture::path(name), "[xz]");
    EXPECT_EQ(store.file.reload(take), StoreFile::Reload::merged);
    EXPECT_EQ(store.state, (std::set{'b', 'x', 'z'}));
    store.save();
    machine.settle();
    EXPECT_EQ(machine.content(name), "[bxz]");
    machine.disk.writeExternally(StoreFixture::path(name), "garbage");
    EXPECT_EQ(store.file.reload(take), StoreFile::Reload::failed);
}

TEST(StoreFile, OfWaitingContentsOnlyTheLatestIsWrittenAndEveryCompletionRuns) {
    StoreFixture machine;
    LetterStore store(machine);
    int contents = 0;
    machine.disk.afterWrite = [&](const std::string&) { ++contents; };
    for (const char letter : {'a', 'b', 'c'})
        store.add(letter);
    EXPECT_EQ(machine.content(name), "(no file)");
    machine.settle();
    EXPECT_EQ(machine.content(name), "[abc]");
    EXPECT_EQ(contents, 1);
    EXPECT_EQ(store.writes, 3);
}

TEST(StoreFile, EndsTheWriteOfAProgramThatDiedBeforeWritingItsOwn) {
    StoreFixture machine;
    LetterStore store(machine);
    store.add('a');
    machine.settle();
    auto other = Journal::take(placeOf(machine), 1);
    other->note(content("[ad]"), content("[a]"));
    store.add('b');
    machine.settle();
    EXPECT_EQ(machine.content(name), "[ab]") << "what a living program noted is its own to write";
    other = nullptr;
    store.add('c');
    machine.settle();
    EXPECT_EQ(machine.content(name), "[abcd]");
    EXPECT_EQ(store.state, (std::set{'a', 'b', 'c', 'd'}));
    EXPECT_THAT(Journal::take(placeOf(machine), 1)->unfinished(), IsEmpty());
}

// While another program holds the lock nothing is written, but all that changes is safe from a crash.
TEST(StoreFile, AProgramThatHoldsTheLockKeepsNoChangeFromTheJournal) {
    StoreFixture machine;
    const std::string lockPath =
        std::string(StoreFixture::stateFolder) + "/" + journalName(StoreFixture::path(name)) + ".lock";
    auto store = std::make_unique<LetterStore>(machine);
    auto held = machine.disk.tryLock(lockPath);
    ASSERT_TRUE(held);
    machine.waited = 0;
    machine.whileWaiting = [&] {
        if (store->state.size() == 1) store->add('b');
    };
    store->add('a');
    machine.settle();
    EXPECT_EQ(machine.content(name), "(no file)");
    EXPECT_NEAR(machine.waited, 2 * 3.0, 0.1) << "once for each of the two contents";
    machine.disk.dieAfter(0);
    machine.whileWaiting = nullptr;
    store.reset();
    machine.restart();
    store = std::make_unique<LetterStore>(machine);
    EXPECT_EQ(store->state, (std::set{'a', 'b'})) << "even before it may be written";
    store->add('c');
    held = nullptr;
    machine.pass(StoreFile::retryInterval);
    EXPECT_EQ(machine.content(name), "[abc]");
}

// A slow disk must not keep a change from the journal: what comes in while one file is being synced is journaled
// before anything else that blocks.
TEST(StoreFile, AChangeDuringASlowWriteIsSafeBeforeTheNextBlockingStep) {
    StoreFixture machine;
    auto slow = std::make_unique<LetterStore>(machine, "slow.json");
    auto quick = std::make_unique<LetterStore>(machine);
    slow->add('s');
    bool isFirstSync = true;
    machine.disk.whileSyncing = [&](const std::string&) {
        if (!std::exchange(isFirstSync, false)) return machine.disk.dieAfter(0);
        quick->add('q');
        slow->add('t');
        machine.settle();
    };
    machine.settle();
    ASSERT_TRUE(machine.disk.isDead());
    slow.reset();
    quick.reset();
    machine.disk.whileSyncing = nullptr;
    machine.restart();
    EXPECT_EQ(LetterStore(machine).state, (std::set{'q'}));
    EXPECT_EQ(LetterStore(machine, "slow.json").state, (std::set{'s', 't'}));
}

TEST(StoreFiles, WaitsForADownloadButNoLongerThanAllowed) {
    StoreFixture machine;
    const std::string path = StoreFixture::path("todos.json");
    machine.files->ensureDownloaded(path, 1.5);
    EXPECT_THAT(machine.cloud.requested, IsEmpty()) << "nothing there, not even a placeholder";
    machine.disk.writeExternally(StoreFixture::path(".todos.json.icloud"), "");
    machine.files->ensureDownloaded(path, 1.5);
    EXPECT_THAT(machine.cloud.requested, ElementsAre(StoreFixture::path(".todos.json.icloud")));
    EXPECT_NEAR(machine.waited, 1.5, 0.11);
    machine.waited = 0;
    machine.whileWaiting = [&] {
        if (machine.waited > 0.25) machine.disk.writeExternally(path, "{}");
    };
    machine.files->ensureDownloaded(path, 1.5);
    EXPECT_NEAR(machine.waited, 0.3, 1e-9);
    machine.files->ensureDownloaded(path, 1.5);
    EXPECT_EQ(machine.cloud.requested.size(), 2U) << "a file that is there is not asked for";
}

}  // namespace
}  // namespace sunpane::testing
