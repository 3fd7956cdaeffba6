#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

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
    const std::string place = folder / R"(100% "my" $apps\)";
    fs::create_directories(place);
    const std::string program = place + "/dawnly";
    AutostartLoginService service(folder / "autostart", program);
    EXPECT_FALSE(service.isEnabled());
    EXPECT_EQ(service.setEnabled(true), std::nullopt);
    EXPECT_FALSE(service.isEnabled()) << "there is nothing to start";
    std::ofstream(program) << "#!/bin/sh\n";
    EXPECT_FALSE(service.isEnabled()) << "not a program";
    fs::permissions(program, fs::perms::owner_all);
    EXPECT_TRUE(service.isEnabled());
    EXPECT_THAT(content(path), HasSubstr("Exec=\"" + folder.path() + R"(/100%% \\"my\\" \\$apps\\\\/dawnly")" + "\n"));
    EXPECT_THAT(content(path), HasSubstr("TryExec=" + folder.path() + R"(/100% "my" $apps\\/dawnly)" + "\n"));
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

TEST(AutostartLoginService, KnowsAnEntryThatStartsAnotherCopy) {
    const testing::TemporaryFolder folder;
    AutostartLoginService moved(folder.path(), "/home/ada/my apps/Dawnly.app/bin/dawnly");
    AutostartLoginService service(folder.path(), "/opt/Dawnly.app/bin/dawnly");
    EXPECT_FALSE(service.startsAnotherCopy());
    moved.setEnabled(true);
    EXPECT_FALSE(moved.startsAnotherCopy());
    EXPECT_TRUE(service.startsAnotherCopy());
    service.setEnabled(true);
    EXPECT_FALSE(service.startsAnotherCopy());
    for (const auto& [command, isAnother] :
         std::initializer_list<std::pair<const char*, bool>>{{"env LANG=C /opt/Dawnly.app/bin/dawnly --verbose", false},
                                                             {"env LANG=C \"/opt/Dawnly.app/bin/dawnly\"", false},
                                                             {"/mnt/opt/Dawnly.app/bin/dawnly", true},
                                                             {"/opt/Dawnly.app/bin/dawnly.old", true}}) {
        folder.write("app.dawnly.Dawnly.desktop", "[Desktop Entry]\nExec=" + std::string(command) + "\n");
        EXPECT_EQ(service.startsAnotherCopy(), isAnother) << command;
    }
}

TEST(AutostartLoginService, KeepsWhatTheUserAddedToTheEntry) {
    const testing::TemporaryFolder folder;
    AutostartLoginService service(folder.path(), "/opt/Dawnly.app/bin/dawnly");
    const std::string rest = "X-GNOME-Autostart-Delay=20\n# slow disk\nOnlyShowIn=GNOME;\n";
    struct Case {
        const char* was;
        const char* command;
    };
    for (const auto& [was, command] : std::initializer_list<Case>{
             {"Exec=nice \"/home/ada/my apps/dawnly\" --verbose\nTryExec=/home/ada/my apps/dawnly\n",
              "Exec=nice \"/opt/Dawnly.app/bin/dawnly\" --verbose\n"},
             {"Exec=/old/dawnly --verbose\nTryExec=/old/dawnly\nHidden=true\n",
              "Exec=\"/opt/Dawnly.app/bin/dawnly\" --verbose\n"},
             {"Exec=nice /opt/Dawnly.app/bin/dawnly\n", "Exec=nice /opt/Dawnly.app/bin/dawnly\n"},
             {"Exec=/old/dawnly\n", "Exec=\"/opt/Dawnly.app/bin/dawnly\"\n"}}) {
        folder.write("app.dawnly.Dawnly.desktop", "[Desktop Entry]\n" + std::string(was) + rest);
        EXPECT_EQ(service.setEnabled(true), std::nullopt);
        const std::string entry = content(folder / "app.dawnly.Dawnly.desktop");
        EXPECT_THAT(entry, HasSubstr(command));
        EXPECT_THAT(entry, HasSubstr("TryExec=/opt/Dawnly.app/bin/dawnly\n"));
        EXPECT_THAT(entry, ::testing::EndsWith(rest));
        EXPECT_THAT(entry, ::testing::Not(HasSubstr("Hidden")));
        EXPECT_EQ(service.setEnabled(true), std::nullopt);
        EXPECT_EQ(content(folder / "app.dawnly.Dawnly.desktop"), entry) << "once is enough";
        EXPECT_EQ(service.setEnabled(false), std::nullopt);
        EXPECT_FALSE(service.isEnabled());
        EXPECT_EQ(service.setEnabled(true), std::nullopt);
        EXPECT_EQ(content(folder / "app.dawnly.Dawnly.desktop"), entry) << "also off and on again";
    }
}

TEST(AutostartLoginService, MindsItsOwnGroupOfTheEntryOnly) {
    const testing::TemporaryFolder folder;
    AutostartLoginService service(folder.path(), "/bin/sh");
    const std::string name = "app.dawnly.Dawnly.desktop";
    const std::string action = "[Desktop Action quiet]\nName=Quietly\nExec=/bin/sh -q\nIcon=quiet\nHidden=true\n\n";
    for (const std::string_view lineEnd : {"\n", "\r\n"}) {
        std::string entry = "# mine\n[Desktop Entry]\nX-Own=1\n\n" + action + "[More]\nTryExec=/nowhere\n";
        for (std::size_t at = 0; (at = entry.find('\n', at)) != std::string::npos; at += lineEnd.size())
            entry.replace(at, 1, lineEnd);
        folder.write(name, entry);
        EXPECT_TRUE(service.isEnabled());
        EXPECT_FALSE(service.startsAnotherCopy()) << "only an action starts something";
        EXPECT_EQ(service.setEnabled(true), std::nullopt);
        const std::string written = content(folder / name);
        EXPECT_THAT(written, ::testing::StartsWith("[Desktop Entry]\nType="));
        EXPECT_THAT(written, ::testing::EndsWith("\n# mine\nX-Own=1\n\n" + action + "[More]\nTryExec=/nowhere\n"));
        EXPECT_THAT(written.substr(1), ::testing::Not(HasSubstr("[Desktop Entry]")));
        EXPECT_EQ(service.setEnabled(true), std::nullopt);
        EXPECT_EQ(content(folder / name), written) << "once is enough";
    }
    folder.write(name, action);
    EXPECT_FALSE(service.isEnabled()) << "no entry";
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
    fs::create_symlink("dawnly", folder / "Downloads/Dawnly.app/bin/alias");
    fs::permissions(folder / "Downloads/Dawnly.app/bin", fs::perms::owner_read | fs::perms::owner_exec);
    const std::string target = folder / "home/.local/lib/Dawnly.app";
    fs::create_directories(target);
    std::ofstream(target + "/old") << "old";

    InstalledBundle bundle(folder / "Downloads/Dawnly.app/bin/dawnly", folder / "home");
    ASSERT_EQ(bundle.installedPath(), target);
    EXPECT_TRUE(bundle.install());
    EXPECT_EQ(content(target + "/bin/dawnly"), "#!/bin/sh\n");
    EXPECT_NE(fs::status(target + "/bin/dawnly").permissions() & fs::perms::owner_exec, fs::perms::none);
    EXPECT_NE(fs::status(target + "/bin").permissions() & fs::perms::owner_write, fs::perms::none)
        << "a folder that cannot be filled, as on a disk image";
    EXPECT_EQ(fs::read_symlink(target + "/bin/alias"), "dawnly");
    EXPECT_FALSE(fs::exists(target + "/old"));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "home/.local/lib"), {}), 1);
}

TEST(InstalledBundle, IsInItsPlaceWhereverTheLinksLead) {
    const testing::TemporaryFolder folder;
    for (const char* made : {"data/ada", "elsewhere/lib"})
        fs::create_directories(folder / made);
    fs::create_directory_symlink(folder / "data", folder / "home");
    const auto isInPlace = [&](const std::string& program) {
        const InstalledBundle bundle(program, folder / "home/ada/");
        const auto places = bundle.applicationFolders();
        return std::any_of(places.begin(), places.end(),
                           [&](const std::string& place) { return bundle.path().starts_with(place); });
    };
    EXPECT_TRUE(isInPlace(folder / "data/ada/.local/lib/Dawnly.app/bin/dawnly"));
    EXPECT_FALSE(isInPlace(folder / "data/ada/Downloads/Dawnly.app/bin/dawnly"));
    fs::create_directories(folder / "data/ada/.local");
    fs::create_directory_symlink(folder / "elsewhere/lib", folder / "data/ada/.local/lib");
    EXPECT_TRUE(isInPlace(folder / "elsewhere/lib/Dawnly.app/bin/dawnly"));
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
