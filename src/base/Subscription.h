#pragma once

#include <functional>

namespace sunpane {

/// A handle on something that runs until it is cancelled: a timer, delayed work, an observer. Destroying the handle
/// cancels; so does assigning another one to it. Cancelling twice does nothing.
class Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> cancel);
    Subscription(Subscription&& other) noexcept;
    Subscription& operator=(Subscription&& other) noexcept;
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription();

    void cancel();

    /// Whether it was set and not yet cancelled. A one-shot timer that has fired still counts as set.
    explicit operator bool() const { return static_cast<bool>(cancel_); }

private:
    std::function<void()> cancel_;
};

}  // namespace sunpane
