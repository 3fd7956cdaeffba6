#include "app/CaptureDraft.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "core/stores/TodoStore.h"
#include "support/SimulatedPlayers.h"
#include "support/StoresFixture.h"

namespace sunpane {
namespace {

struct CaptureDraftTest : testing::StoresFixture {
    std::string atNextStart() { return CaptureDraft(storeFiles).text(); }
};

TEST_F(CaptureDraftTest, WhatWasTypedIsThereAtTheNextStart) {
    {
        CaptureDraft draft(storeFiles);
        EXPECT_EQ(draft.text(), "");
        draft.set("Call m");
        draft.set("Call mum");
    }
    EXPECT_EQ(atNextStart(), "Call mum");
}

TEST_F(CaptureDraftTest, AProgramThatDiesLosesNoMoreThanTheLastKeys) {
    CaptureDraft draft(storeFiles);
    // A typist who never pauses is saved all the same.
    std::string text;
    for (int i = 0; i < 20; ++i) {
        draft.set(text += 'x');
        platform.time.advance(0.1);
    }
    EXPECT_GE(atNextStart().size(), 20 - CaptureDraft::saveInterval / 0.1 - 1);
    platform.time.advance(CaptureDraft::saveInterval);
    EXPECT_EQ(atNextStart(), text);
    draft.set("");
    platform.time.runPending();
    EXPECT_EQ(atNextStart(), "") << "entered, and not to be entered twice";
    platform.time.advance(CaptureDraft::saveInterval);
    EXPECT_EQ(files.content("/state/draft.txt"), std::nullopt);
}

/// Queues that run only when told to, each by itself.
class QueuesByHand : public WorkQueueFactory {
public:
    std::unique_ptr<WorkQueue> makeQueue(std::string) override {
        auto queue = std::make_unique<testing::HeldWorkQueue>();
        made.push_back(queue.get());
        return queue;
    }
    std::vector<testing::HeldWorkQueue*> made;
};

TEST_F(CaptureDraftTest, ATodoIsJournaledBeforeTheDraftOfItGoes) {
    QueuesByHand queues;
    StoreFiles slow{{files, cloudFiles, platform.clock, platform.runLoop, queues, [](Seconds) {}}, "/state"};
    ASSERT_EQ(queues.made.size(), 2U);
    CaptureDraft draft(slow);
    draft.set("Call mum");
    platform.time.advance(CaptureDraft::saveInterval);
    slow.drain();
    ASSERT_EQ(files.content("/state/draft.txt"), "Call mum");

    TodoStore todos(slow, "/briefings");
    todos.add("Call mum");
    draft.set("");
    // The disk's queue may be the faster one, and the program may die at any moment.
    queues.made[1]->drain();
    EXPECT_EQ(files.content("/state/draft.txt"), "Call mum");
    queues.made[0]->drain();
    const auto names = files.filesIn("/state");
    EXPECT_TRUE(std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return name.find(".journal") != std::string::npos &&
               files.content("/state/" + name).value_or("").find("Call mum") != std::string::npos;
    }));
    slow.drain();
    EXPECT_EQ(files.content("/state/draft.txt"), std::nullopt);
}

TEST_F(CaptureDraftTest, AFileThatIsNoDraftDoesNoHarm) {
    files.createFolders("/state");
    files.writeExternally("/state/draft.txt", "a\xff");
    EXPECT_EQ(atNextStart(), "a\xef\xbf\xbd");
    files.writeExternally("/state/draft.txt", std::string(CaptureDraft::maximumBytes + 1, 'x'));
    EXPECT_EQ(atNextStart(), "");
}

}  // namespace
}  // namespace sunpane
