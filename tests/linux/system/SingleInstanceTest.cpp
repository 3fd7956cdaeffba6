#include "linux/system/SingleInstance.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <iterator>
#include <thread>

#include "support/TemporaryFolder.h"

namespace sunpane {
namespace {

using Outcome = SingleInstance::Outcome;

/// Another copy of the program. Killed at the end of the test if it still runs.
class Copy {
public:
    explicit Copy(const std::function<void()>& run) : process_(fork()) {
        if (process_ != 0) return;
        run();
        _exit(0);
    }
    ~Copy() {
        if (ended_) return;
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    /// How it ended, as wait(2) tells.
    int end() {
        int status = 0;
        waitpid(process_, &status, 0);
        ended_ = true;
        return status;
    }

private:
    pid_t process_;
    bool ended_ = false;
};

class SingleInstanceTest : public ::testing::Test {
protected:
    // Runs in the copy: holds the lock and says so, then waits for signals.
    void hold() const {
        SingleInstance instance(lock);
        if (instance.replaceOther() != Outcome::alone) _exit(3);
        say("ready");
        for (;;)
            pause();
    }
    void say(const std::string& word) const { folder.write(word, ""); }
    bool said(const std::string& word) const { return access((folder / word).c_str(), F_OK) == 0; }
    void await(const std::string& word) const {
        for (int tries = 0; tries < 500 && !said(word); ++tries)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        ASSERT_TRUE(said(word));
    }

    testing::TemporaryFolder folder;
    const std::string lock = folder / "lock";
};

// The clock that ages processes ticks every hundredth of a second.
void letAClockTickPass() {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
}

TEST_F(SingleInstanceTest, ANewerCopyWaitsUntilTheOlderOneHasWrittenEverything) {
    static std::string written;
    written = folder / "written";
    Copy older([this] {
        std::signal(SIGTERM, [](int) {
            usleep(200'000);
            close(open(written.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
            _exit(7);
        });
        hold();
    });
    await("ready");
    letAClockTickPass();
    Copy newer([this] {
        SingleInstance instance(lock);
        const bool alone = instance.replaceOther() == Outcome::alone;
        _exit(alone && said("written") ? 0 : 1);
    });
    EXPECT_EQ(newer.end(), 0);
    EXPECT_EQ(WEXITSTATUS(older.end()), 7);
}

TEST_F(SingleInstanceTest, ACopyThatDoesNotEndIsKilled) {
    Copy older([this] {
        std::signal(SIGTERM, SIG_IGN);
        hold();
    });
    await("ready");
    letAClockTickPass();
    Copy newer([this] {
        SingleInstance instance(lock);
        _exit(instance.replaceOther(0.2) == Outcome::alone ? 0 : 1);
    });
    EXPECT_EQ(newer.end(), 0);
    EXPECT_EQ(WTERMSIG(older.end()), SIGKILL);
}

TEST_F(SingleInstanceTest, AnOlderCopyGivesWayAndHarmsNobody) {
    Copy older([this] {
        await("ready");
        SingleInstance instance(lock);
        _exit(instance.replaceOther() == Outcome::newerRuns ? 0 : 1);
    });
    letAClockTickPass();
    Copy newer([this] { hold(); });
    EXPECT_EQ(older.end(), 0);
    // The test itself is older still.
    EXPECT_EQ(SingleInstance(lock).replaceOther(), Outcome::newerRuns);
}

TEST_F(SingleInstanceTest, NothingIsLeftBehindByACopyThatWasKilled) {
    {
        Copy killed([this] { hold(); });
        await("ready");
    }
    EXPECT_EQ(SingleInstance(lock).replaceOther(), Outcome::alone);
}

TEST_F(SingleInstanceTest, WhereNoLockCanBeMadeNobodyIsHarmed) {
    EXPECT_EQ(SingleInstance(folder / "absent/lock").replaceOther(), Outcome::unknown);
    folder.write("elsewhere", "mine");
    ASSERT_EQ(symlink((folder / "elsewhere").c_str(), (folder / "link").c_str()), 0);
    EXPECT_EQ(SingleInstance(folder / "link").replaceOther(), Outcome::unknown);
}

}  // namespace
}  // namespace sunpane
