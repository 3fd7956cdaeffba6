#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/FolderEvents.h"

namespace sunpane::testing {

/// Events of real folders that are told by hand. Like the real thing, it refuses to watch a folder that does not exist,
/// and a source stays with the folder it was made for when that one is replaced by another.
class SimulatedFolderEvents : public FolderEvents {
public:
    std::unique_ptr<FolderEventSource> watch(const std::string& folder, SerialExecutor& executor,
                                             Handler handler) override {
        std::error_code error;
        if (refuses || !std::filesystem::is_directory(folder, error)) return nullptr;
        auto shared = std::make_shared<Watched>(Watched{folder, executor, std::move(handler), true});
        watched_.push_back(shared);
        return std::make_unique<Source>(std::move(shared));
    }

    /// Tells everyone who watches `folder` that `name` has changed.
    void tell(const std::string& folder, const std::string& name) {
        for (const auto& weak : watched_) {
            const auto watched = weak.lock();
            if (!watched || !watched->isCurrent || watched->folder != folder) continue;
            watched->executor.post([weak, name] {
                if (const auto alive = weak.lock()) alive->handler(name);
            });
        }
    }

    /// From now on the sources of `folder` stand for a folder that is no longer there.
    void replace(const std::string& folder) {
        for (const auto& weak : watched_) {
            if (const auto watched = weak.lock(); watched && watched->folder == folder) watched->isCurrent = false;
        }
    }

    std::size_t watcherCount() const {
        std::size_t count = 0;
        for (const auto& weak : watched_)
            count += weak.expired() ? 0 : 1;
        return count;
    }

    /// Whether watching fails, as when the machine has run out of watches.
    bool refuses = false;

private:
    struct Watched {
        std::string folder;
        SerialExecutor& executor;
        Handler handler;
        bool isCurrent;
    };

    class Source : public FolderEventSource {
    public:
        explicit Source(std::shared_ptr<Watched> watched) : watched_(std::move(watched)) {}
        bool isCurrent() const override { return watched_->isCurrent; }

    private:
        std::shared_ptr<Watched> watched_;
    };

    std::vector<std::weak_ptr<Watched>> watched_;
};

}  // namespace sunpane::testing
