#include "notch/PinnedSpace.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace sunpane {

PinnedSpace::PinnedSpace(WindowSpaces* spaces, const UserDefaults& defaults, Log log)
    : spaces_(spaces), defaults_(defaults), log_(std::move(log)) {}

bool PinnedSpace::pin(const PanelWindow& window) {
    if (spaces_ == nullptr) return false;
    if (space_ == 0) {
        const std::int32_t at = level();
        space_ = spaces_->createPrivate(at);
        if (space_ == 0) return false;
        log_("PinnedSpace: space " + std::to_string(space_) + " at level " + std::to_string(at));
    }
    spaces_->show(space_);
    spaces_->moveWindow(window.number(), space_);
    log_("PinnedSpace: window " + std::to_string(window.number()) + " -> space " + std::to_string(space_));
    return true;
}

void PinnedSpace::reset() {
    if (space_ == 0) return;
    ++generation_;
    spaces_->destroy(std::exchange(space_, 0));
}

std::int32_t PinnedSpace::level() const {
    using Limits = std::numeric_limits<std::int32_t>;
    const auto set = defaults_.read<std::int64_t>(levelKey).valueOr(0);
    if (set == 0) return defaultLevel;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(set, Limits::min(), Limits::max()));
}

}  // namespace sunpane
