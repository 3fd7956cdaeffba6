#include "base/Subscription.h"

#include <utility>

namespace sunpane {

Subscription::Subscription(std::function<void()> cancel) : cancel_(std::move(cancel)) {}

Subscription::Subscription(Subscription&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}

Subscription& Subscription::operator=(Subscription&& other) noexcept {
    if (this != &other) {
        cancel();
        cancel_ = std::exchange(other.cancel_, nullptr);
    }
    return *this;
}

Subscription::~Subscription() {
    cancel();
}

void Subscription::cancel() {
    if (auto cancel = std::exchange(cancel_, nullptr)) cancel();
}

}  // namespace sunpane
