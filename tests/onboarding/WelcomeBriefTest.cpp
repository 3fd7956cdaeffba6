#include "onboarding/WelcomeBrief.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/briefing/BriefingCheck.h"
#include "core/briefing/BriefingParser.h"
#include "core/briefing/FolderBriefingProvider.h"
#include "support/SimulatedFileSystem.h"
#include "support/SimulatedPlatform.h"
#include "support/SimulatedUserDefaults.h"

namespace sunpane {
namespace {

using ::testing::IsEmpty;
using testing::SimulatedFileSystem;
using testing::SimulatedPlatform;
using testing::SimulatedUserDefaults;
using ::testing::SizeIs;

class WelcomeBrief : public ::testing::Test {
protected:
    WelcomeBrief() { defaults.set(FolderBriefingProvider::folderDefaultsKey, std::string("/b/Dawnly")); }

    void write() { onboarding::writeWelcomeBriefIfNeeded(defaults, files, platform.clock); }
    bool attempted() const { return defaults.read<bool>(onboarding::didWriteWelcomeBriefKey).valueOr(false); }

    SimulatedPlatform platform;
    SimulatedFileSystem files{platform.clock};
    SimulatedUserDefaults defaults;
    // The simulation's first day.
    const std::string path = "/b/Dawnly/2026-11-22.md";
};

TEST_F(WelcomeBrief, IsAGoodBriefingForToday) {
    write();
    EXPECT_TRUE(attempted());
    const auto written = files.content(path);
    ASSERT_TRUE(written);
    EXPECT_THAT(briefing::check("2026-11-22.md", *written, LocalCalendar(platform.clock)), IsEmpty());
    const auto document = briefing::splitDocument(*written);
    EXPECT_EQ(document.title, "👋 Welcome to Dawnly");
    EXPECT_THAT(briefing::sections(document.markdown), SizeIs(3));  // the action items become todos
    EXPECT_THAT(briefing::actionItems(document.markdown), SizeIs(4));
}

TEST_F(WelcomeBrief, IsWrittenOnceInALifetime) {
    write();
    files.removeExternally(path);
    write();
    EXPECT_FALSE(files.content(path));
}

TEST_F(WelcomeBrief, LeavesABriefingThatIsThereAlone) {
    files.makeFolder("/b/Dawnly");
    files.writeExternally(path, "# Mine\n");
    write();
    EXPECT_EQ(files.content(path), "# Mine\n");
    EXPECT_TRUE(attempted());
}

TEST_F(WelcomeBrief, FailsSilentlyAndDoesNotTryAgain) {
    files.readOnlyFolders.insert("/b/Dawnly");
    write();
    EXPECT_FALSE(files.content(path));
    files.readOnlyFolders.clear();
    write();
    EXPECT_FALSE(files.content(path));
    EXPECT_TRUE(attempted());
}

}  // namespace
}  // namespace sunpane
