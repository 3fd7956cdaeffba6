#include <gtest/gtest.h>

#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <set>

#include "linux/system/InotifyFolderEvents.h"
#include "linux/system/ThreadWorkQueue.h"
#include "support/TemporaryFolder.h"

namespace sunpane {
namespace {

class Recorder {
public:
    FolderEvents::Handler handler() {
        return [this](const std::string& name) {
            const std::lock_guard lock(mutex_);
            names_.insert(name);
            changed_.notify_all();
        };
    }
    bool waitFor(const std::string& name) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(10), [&] { return names_.count(name) > 0; });
    }
    std::set<std::string> names() {
        const std::lock_guard lock(mutex_);
        return names_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::set<std::string> names_;
};

struct InotifyTest : ::testing::Test {
    testing::TemporaryFolder folder;
    Recorder recorder;
    std::unique_ptr<WorkQueue> queue = ThreadWorkQueueFactory().makeQueue("q");
    InotifyFolderEvents events;
};

TEST_F(InotifyTest, NamesEntriesThatComeGoAndAreRewritten) {
    folder.write("old.md", "x");
    const auto source = events.watch(folder.path(), *queue, recorder.handler());
    ASSERT_TRUE(source);
    EXPECT_TRUE(source->isCurrent());
    folder.write("new\nline.md", "x");
    EXPECT_TRUE(recorder.waitFor("new\nline.md"));
    std::filesystem::rename(folder / "new\nline.md", folder / "moved.md");
    EXPECT_TRUE(recorder.waitFor("moved.md"));
    std::filesystem::remove(folder / "moved.md");
    folder.write("old.md", "changed in place");
    EXPECT_TRUE(recorder.waitFor("old.md"));
    EXPECT_TRUE(source->isCurrent());
}

TEST_F(InotifyTest, KnowsWhenItsFolderIsNoLongerTheOneUnderThePath) {
    const std::string inner = folder / "inner";
    std::filesystem::create_directory(inner);
    const auto source = events.watch(inner, *queue, recorder.handler());
    ASSERT_TRUE(source);
    std::filesystem::rename(inner, folder / "elsewhere");
    EXPECT_TRUE(recorder.waitFor(""));
    std::filesystem::create_directory(inner);
    EXPECT_FALSE(source->isCurrent());
}

TEST_F(InotifyTest, GivesNothingForWhatIsNotAFolder) {
    folder.write("file", "x");
    EXPECT_FALSE(events.watch(folder / "missing", *queue, recorder.handler()));
    EXPECT_FALSE(events.watch(folder / "file", *queue, recorder.handler()));
}

TEST_F(InotifyTest, TellsNothingAfterItIsDestroyed) {
    auto source = events.watch(folder.path(), *queue, recorder.handler());
    source.reset();
    folder.write("late.md", "x");
    queue->drain();
    EXPECT_TRUE(recorder.names().empty());
}

}  // namespace
}  // namespace sunpane
