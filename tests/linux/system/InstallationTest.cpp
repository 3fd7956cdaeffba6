#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "linux/system/AutostartLoginService.h"
#include "linux/system/InstalledBundle.h"
#include "support/TemporaryFolder.h"

namespace sunpane {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

std::string content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(AutostartLoginService, WritesAnEntryThatStartsTheProgramAndTakesItBack) {
    const testing::TemporaryFolder folder;
    const std::string path = folder / "autostart/app.dawnly.Dawnly.desktop";
    AutostartLoginService service(folder / "autostart", R"(/opt/100% "my" $apps\/Dawnly.app/bin/dawnly)");
    EXPECT_FALSE(service.isEnabled());
    EXPECT_EQ(service.setEnabled(true), std::nullopt);
    EXPECT_TRUE(service.isEnabled());
    EXPECT_THAT(content(path),
                HasSubstr(R"(Exec="/opt/100%% \\"my\\" \\$apps\\\\/Dawnly.app/bin/dawnly")" + std::string("\n")));
    EXPECT_THAT(content(path),
                HasSubstr(R"(TryExec=/opt/100% "my" $apps\\/Dawnly.app/bin/dawnly)" + std::string("\n")));
    EXPECT_EQ(service.setEnabled(false), std::nullopt);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(service.setEnabled(false), std::nullopt);
}

TEST(AutostartLoginService, HeedsWhoeverSwitchesTheEntryOff) {
    const testing::TemporaryFolder folder;
    const AutostartLoginService service(folder.path(), "/usr/lib/Dawnly.app/bin/dawnly");
    for (const char* line : {"Hidden=true", "X-GNOME-Autostart-enabled = false"}) {
        folder.write("app.dawnly.Dawnly.desktop", "[Desktop Entry]\n" + std::string(line) + "\nName=Dawnly\n");
        EXPECT_FALSE(service.isEnabled()) << line;
    }
}

TEST(AutostartLoginService, TellsWhyItFailed) {
    const testing::TemporaryFolder folder;
    folder.write("file", "");
    AutostartLoginService service(folder / "file/autostart", "/usr/lib/Dawnly.app/bin/dawnly");
    const auto error = service.setEnabled(true);
    ASSERT_TRUE(error);
    EXPECT_THAT(*error, HasSubstr("file/autostart"));
    EXPECT_FALSE(service.isEnabled());
}

TEST(InstalledBundle, GoesToItsPlaceAsAWholeAndInPlaceOfAnOlderOne) {
    const testing::TemporaryFolder folder;
    fs::create_directories(folder / "Downloads/Dawnly.app/bin");
    folder.write("Downloads/Dawnly.app/bin/dawnly", "#!/bin/sh\n");
    fs::permissions(folder / "Downloads/Dawnly.app/bin/dawnly", fs::perms::owner_all);
    const std::string target = folder / "home/.local/lib/Dawnly.app";
    fs::create_directories(target);
    std::ofstream(target + "/old") << "old";

    InstalledBundle bundle(folder / "Downloads/Dawnly.app/bin/dawnly", folder / "home");
    ASSERT_EQ(bundle.installedPath(), target);
    EXPECT_TRUE(bundle.install());
    EXPECT_EQ(content(target + "/bin/dawnly"), "#!/bin/sh\n");
    EXPECT_NE(fs::status(target + "/bin/dawnly").permissions() & fs::perms::owner_exec, fs::perms::none);
    EXPECT_FALSE(fs::exists(target + "/old"));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "home/.local/lib"), {}), 1);
}

TEST(InstalledBundle, KeepsWhatIsThereWhenItCannotBeCopied) {
    const testing::TemporaryFolder folder;
    const std::string target = folder / "home/.local/lib/Dawnly.app";
    fs::create_directories(target);
    std::ofstream(target + "/old") << "old";
    InstalledBundle gone(folder / "gone/Dawnly.app/bin/dawnly", folder / "home");
    EXPECT_FALSE(gone.install());
    EXPECT_EQ(content(target + "/old"), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "home/.local/lib"), {}), 1);
}

}  // namespace
}  // namespace sunpane
