#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "base/Subscription.h"

namespace sunpane {

/// Handlers that may be added and cancelled at any time, also while they are being called. Not thread-safe.
template <class... Arguments>
class HandlerList {
public:
    using Handler = std::function<void(Arguments...)>;

    [[nodiscard]] Subscription add(Handler handler) {
        auto entry = std::make_shared<Handler>(std::move(handler));
        entries_->push_back(entry);
        return Subscription([entries = std::weak_ptr(entries_), weak = std::weak_ptr(entry)] {
            const auto cancelled = weak.lock();
            if (!cancelled) return;
            *cancelled = nullptr;
            if (const auto list = entries.lock()) std::erase(*list, cancelled);
        });
    }

    void call(Arguments... arguments) const {
        const auto snapshot = *entries_;
        for (const auto& entry : snapshot) {
            // A copy keeps a handler alive that cancels itself while it runs.
            if (const Handler handler = *entry) handler(arguments...);
        }
    }

private:
    using Entries = std::vector<std::shared_ptr<Handler>>;
    std::shared_ptr<Entries> entries_ = std::make_shared<Entries>();
};

}  // namespace sunpane
