#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "linux/system/JsonUserDefaults.h"
#include "support/TemporaryFolder.h"

namespace sunpane {
namespace {

using Presence = UserDefaults::Presence;

/// The superuser may read every file; while this lives, tests that the superuser runs may not.
class OrdinaryUser {
public:
    explicit OrdinaryUser(const std::vector<std::string>& ownedPaths) {
        if (geteuid() != 0) return;
        for (const auto& path : ownedPaths)
            EXPECT_EQ(chown(path.c_str(), nobody, nobody), 0);
        EXPECT_EQ(seteuid(nobody), 0);
    }
    ~OrdinaryUser() {
        if (getuid() != 0) return;
        EXPECT_EQ(seteuid(0), 0);
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    static constexpr uid_t nobody = 65534;
};

struct UserDefaultsTest : ::testing::Test {
    testing::TemporaryFolder folder;
    std::string path = folder / "config/defaults.json";
    JsonUserDefaults defaults{path};

    std::string fileText() const {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

TEST_F(UserDefaultsTest, TellsAbsentAndMistypedFromPresent) {
    EXPECT_EQ(defaults.read<std::string>("k").presence, Presence::absent);
    defaults.set("k", std::string("text"));
    defaults.set("n", std::int64_t{7});
    defaults.set("list", std::vector<std::string>{"a", "b"});
    const JsonUserDefaults reopened(path);
    EXPECT_EQ(reopened.read<std::string>("k").valueOr(""), "text");
    EXPECT_EQ(reopened.read<bool>("k").presence, Presence::mistyped);
    EXPECT_EQ(reopened.read<double>("n").valueOr(0), 7.0);
    EXPECT_EQ(reopened.read<std::int64_t>("k").valueOr(3), 3);
    EXPECT_EQ(reopened.read<std::vector<std::string>>("list").value->size(), 2U);
    defaults.remove("k");
    EXPECT_EQ(reopened.read<std::string>("k").presence, Presence::absent);
}

TEST_F(UserDefaultsTest, KeepsOtherProcessesWritesAndUnknownMembers) {
    std::filesystem::create_directories(folder / "config");
    folder.write("config/defaults.json", R"({"nested":{"a":[1]},"x":true})");
    EXPECT_EQ(defaults.read<bool>("x").valueOr(false), true);
    JsonUserDefaults other(path);
    other.set("y", 0.5);
    defaults.set("z", false);
    const std::string text = fileText();
    EXPECT_NE(text.find("nested"), std::string::npos);
    EXPECT_EQ(JsonUserDefaults(path).read<double>("y").valueOr(0), 0.5);
}

TEST_F(UserDefaultsTest, KeepsAnUnreadableFileAside) {
    std::filesystem::create_directories(folder / "config");
    folder.write("config/defaults.json", "{\"half\":");
    EXPECT_EQ(defaults.read<bool>("half").presence, Presence::absent);
    defaults.set("fresh", true);
    EXPECT_TRUE(std::filesystem::exists(path + ".unreadable"));
    EXPECT_EQ(JsonUserDefaults(path).read<bool>("fresh").valueOr(false), true);
}

TEST_F(UserDefaultsTest, SavesOverAFileThatMayNotBeReadOrThatWent) {
    std::filesystem::create_directories(folder / "config");
    folder.write("own.json", R"({"secret":true})");
    std::filesystem::permissions(folder / "own.json", std::filesystem::perms::none);
    std::filesystem::create_symlink(folder / "own.json", path);
    {
        const OrdinaryUser user({folder.path(), folder / "config", folder / "own.json"});
        EXPECT_TRUE(defaults.set("fresh", true));
        EXPECT_EQ(JsonUserDefaults(path).read<bool>("fresh").valueOr(false), true);
    }
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    std::filesystem::permissions(path + ".unreadable", std::filesystem::perms::owner_all);
    EXPECT_TRUE(JsonUserDefaults(path + ".unreadable").read<bool>("secret").valueOr(false));

    folder.write("own.json", "{");
    EXPECT_EQ(defaults.read<bool>("fresh").valueOr(false), true);
    std::filesystem::remove(folder / "own.json");
    EXPECT_TRUE(defaults.set("more", true)) << "what it could not understand went";
}

TEST_F(UserDefaultsTest, LeavesALinkThatTheUserMadeAndTheFilesPermissions) {
    std::filesystem::create_directories(folder / "config");
    folder.write("own.json", R"({"mine":true})");
    std::filesystem::permissions(folder / "own.json", std::filesystem::perms{0640});
    std::filesystem::create_symlink(folder / "own.json", path);
    EXPECT_TRUE(defaults.set("more", true));
    folder.write("own.json", "{");
    EXPECT_TRUE(defaults.set("most", true));
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    EXPECT_EQ(std::filesystem::status(folder / "own.json").permissions(), std::filesystem::perms{0640});
    EXPECT_EQ(JsonUserDefaults(folder / "own.json").keys(), (std::vector<std::string>{"mine", "more", "most"}));
    EXPECT_EQ(std::filesystem::file_size(path + ".unreadable"), 1U);
}

// Each has an object of its own, as if it were a process of its own.
TEST_F(UserDefaultsTest, WritersAtTheSameTimeLoseNothing) {
    constexpr int writers = 4;
    constexpr int keysEach = 25;
    std::vector<std::thread> threads;
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([this, writer] {
            JsonUserDefaults own(path);
            for (int key = 0; key < keysEach; ++key)
                EXPECT_TRUE(own.set(std::to_string(writer) + "." + std::to_string(key), true));
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(defaults.keys().size(), std::size_t{writers * keysEach});
}

TEST_F(UserDefaultsTest, RemembersWhatItCannotWrite) {
    std::filesystem::create_directories(path);  // a folder stands where the file belongs
    EXPECT_FALSE(defaults.set("kept", true));
    EXPECT_EQ(defaults.read<bool>("kept").valueOr(false), true);
}

}  // namespace
}  // namespace sunpane
