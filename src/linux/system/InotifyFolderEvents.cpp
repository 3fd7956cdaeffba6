#include "linux/system/InotifyFolderEvents.h"

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>

#include "base/FileDescriptor.h"

namespace sunpane {
namespace {

constexpr std::uint32_t watchedEvents =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

struct FolderIdentity {
    dev_t device;
    ino_t inode;
    friend bool operator==(const FolderIdentity&, const FolderIdentity&) = default;
};

std::optional<FolderIdentity> identify(const std::string& folder) {
    struct stat info {};
    if (stat(folder.c_str(), &info) != 0) return std::nullopt;
    return FolderIdentity{info.st_dev, info.st_ino};
}

class InotifySource : public FolderEventSource {
public:
    InotifySource(std::string folder, FolderIdentity identity, FileDescriptor events, FileDescriptor wake,
                  SerialExecutor& executor, FolderEvents::Handler handler)
        : folder_(std::move(folder)),
          identity_(identity),
          events_(std::move(events)),
          wake_(std::move(wake)),
          executor_(executor),
          handler_(std::make_shared<FolderEvents::Handler>(std::move(handler))),
          thread_([this] { run(); }) {
        pthread_setname_np(thread_.native_handle(), "folder.events");
    }

    ~InotifySource() override {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = write(wake_.get(), &one, sizeof one);
        thread_.join();
    }

    InotifySource(const InotifySource&) = delete;
    InotifySource& operator=(const InotifySource&) = delete;

    bool isCurrent() const override { return !lost_ && identify(folder_) == identity_; }

private:
    void run() {
        std::array<pollfd, 2> descriptors{{{events_.get(), POLLIN, 0}, {wake_.get(), POLLIN, 0}}};
        while (true) {
            if (poll(descriptors.data(), descriptors.size(), -1) < 0) {
                if (errno == EINTR) continue;
                return;
            }
            if (descriptors[1].revents != 0) return;
            deliver();
        }
    }

    void deliver() {
        alignas(inotify_event) std::array<char, 16384> buffer;
        const ssize_t length = read(events_.get(), buffer.data(), buffer.size());
        std::set<std::string> names;  // one announcement for each entry, however often it was touched
        for (ssize_t at = 0; at + static_cast<ssize_t>(sizeof(inotify_event)) <= length;) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + at, sizeof event);
            const bool ownEntry = (event.mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED | IN_UNMOUNT)) != 0;
            if (ownEntry) lost_ = true;
            names.emplace(event.len > 0 ? buffer.data() + at + sizeof event : "");
            at += static_cast<ssize_t>(sizeof event + event.len);
        }
        for (const auto& name : names) {
            executor_.post([weak = std::weak_ptr(handler_), name] {
                if (const auto handler = weak.lock()) (*handler)(name);
            });
        }
    }

    std::string folder_;
    FolderIdentity identity_;
    FileDescriptor events_;
    FileDescriptor wake_;
    SerialExecutor& executor_;
    std::shared_ptr<FolderEvents::Handler> handler_;
    std::atomic<bool> lost_{false};
    std::thread thread_;
};

}  // namespace

std::unique_ptr<FolderEventSource> InotifyFolderEvents::watch(const std::string& folder, SerialExecutor& executor,
                                                              Handler handler) {
    FileDescriptor events(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    FileDescriptor wake(eventfd(0, EFD_CLOEXEC));
    const auto identity = identify(folder);
    if (!events.isOpen() || !wake.isOpen() || !identity) return nullptr;
    if (inotify_add_watch(events.get(), folder.c_str(), watchedEvents) < 0) return nullptr;
    return std::make_unique<InotifySource>(folder, *identity, std::move(events), std::move(wake), executor,
                                           std::move(handler));
}

}  // namespace sunpane
