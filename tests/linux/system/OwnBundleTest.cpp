#include "linux/system/OwnBundle.h"

#include <gtest/gtest.h>

namespace sunpane {
namespace {

TEST(OwnBundleTest, IsTheNearestFolderThatAnInstallationMakes) {
    const struct {
        const char* program;
        const char* bundle;
    } cases[] = {
        {"/home/u/.local/lib/Dawnly.app/bin/dawnly", "/home/u/.local/lib/Dawnly.app"},
        {"/usr/lib/dawnly/Dawnly.app/bin/dawnly", "/usr/lib/dawnly/Dawnly.app"},
        {"/a/Old.app/New.app/dawnly", "/a/Old.app/New.app"},
        {"/Dawnly.app/bin/dawnly", "/Dawnly.app"},
        {"/home/u/sunpane/build/bin/dawnly", "/home/u/sunpane/build/bin"},
        {"/srv/Dawnly.apps/bin/dawnly", "/srv/Dawnly.apps/bin"},
        {"/usr/bin/dawnly.app", "/usr/bin"},
        {"/dawnly", "/"},
        // An upgrade took the file away under the running program.
        {"/opt/Dawnly.app/bin/dawnly (deleted)", "/opt/Dawnly.app"},
    };
    for (const auto& [program, bundle] : cases)
        EXPECT_EQ(bundlePathOf(program), bundle);
    EXPECT_EQ(ownBundlePath().find(".app"), std::string::npos);
}

}  // namespace
}  // namespace sunpane
