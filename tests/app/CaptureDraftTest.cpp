#include "app/CaptureDraft.h"

#include <gtest/gtest.h>

#include <optional>

#include "support/SimulatedFileSystem.h"
#include "support/SimulatedPlatform.h"

namespace sunpane {
namespace {

struct CaptureDraftTest : ::testing::Test {
    testing::SimulatedPlatform platform;
    testing::SimulatedFileSystem files{platform.clock};
    testing::SimulatedCloudFiles cloudFiles;
    StoreFiles storeFiles{{files, cloudFiles, platform.clock, platform.runLoop, platform.queues, [](Seconds) {}},
                          "/state"};

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

TEST_F(CaptureDraftTest, AFileThatIsNoDraftDoesNoHarm) {
    files.createFolders("/state");
    files.writeExternally("/state/draft.txt", "a\xff");
    EXPECT_EQ(atNextStart(), "a\xef\xbf\xbd");
    files.writeExternally("/state/draft.txt", std::string(CaptureDraft::maximumBytes + 1, 'x'));
    EXPECT_EQ(atNextStart(), "");
}

}  // namespace
}  // namespace sunpane
