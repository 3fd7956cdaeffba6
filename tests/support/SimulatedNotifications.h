#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/RunLoop.h"
#include "platform/NotificationService.h"
#include "platform/UserNotifications.h"

namespace sunpane::testing {

/// A notification centre that keeps requests and lets the test play the user.
class SimulatedNotificationCenter : public UserNotificationCenter {
public:
    explicit SimulatedNotificationCenter(RunLoop& runLoop) : runLoop_(runLoop) {}

    void authorization(std::function<void(NotificationAuthorization)> answer) override {
        runLoop_.post([this, answer = std::move(answer)] { answer(status); });
    }
    void requestAuthorization(std::function<void(bool)> answer) override { questions.push_back(std::move(answer)); }
    void pending(std::function<void(std::vector<NotificationRequest>)> answer) override {
        runLoop_.post([this, answer = std::move(answer)] { answer(requests()); });
    }
    void add(NotificationRequest request) override {
        ++additions;
        auto identifier = request.identifier;
        byIdentifier.insert_or_assign(std::move(identifier), std::move(request));
    }
    void removePending(const std::vector<std::string>& identifiers) override {
        ++removals;
        for (const auto& identifier : identifiers)
            byIdentifier.erase(identifier);
    }
    void setResponseHandler(std::function<void(const NotificationResponse&)> handler) override {
        respond = std::move(handler);
    }

    std::vector<NotificationRequest> requests() const {
        std::vector<NotificationRequest> result;
        for (const auto& [identifier, request] : byIdentifier)
            result.push_back(request);
        return result;
    }
    std::vector<std::string> identifiers() const {
        std::vector<std::string> result;
        for (const auto& [identifier, request] : byIdentifier)
            result.push_back(identifier);
        return result;
    }

    NotificationAuthorization status = NotificationAuthorization::authorized;
    std::vector<std::function<void(bool)>> questions;
    std::map<std::string, NotificationRequest> byIdentifier;
    int additions = 0;
    int removals = 0;
    std::function<void(const NotificationResponse&)> respond;

private:
    RunLoop& runLoop_;
};

/// A notification service that comes and goes and remembers what it showed.
class SimulatedNotificationService : public NotificationService {
public:
    struct Shown {
        std::string title;
        std::string body;
        std::uint32_t number;
        friend bool operator==(const Shown&, const Shown&) = default;
    };

    explicit SimulatedNotificationService(RunLoop& runLoop) : runLoop_(runLoop) {}

    bool available() const override { return isAvailable; }
    std::string instance() const override { return isAvailable ? "run-" + std::to_string(run_) : ""; }
    void show(const std::string& title, const std::string& body, std::function<void(std::uint32_t)> answer) override {
        ++calls;
        std::uint32_t number = 0;
        if (isAvailable && !refuses) {
            number = ++lastNumber_;
            shown.push_back({title, body, number});
            if (onShown) onShown(shown.back());
        }
        runLoop_.post([answer = std::move(answer), number] { answer(number); });
    }
    void setClickHandler(std::function<void(std::uint32_t)> handler) override { click = std::move(handler); }
    void setAvailabilityHandler(std::function<void()> handler) override { availability_ = std::move(handler); }

    /// The service goes, or comes back as another run that counts from 1 again.
    void setAvailable(bool value) {
        if (isAvailable == value) return;
        isAvailable = value;
        if (value) {
            ++run_;
            lastNumber_ = 0;
        }
        if (availability_) availability_();
    }

    bool isAvailable = true;
    /// Whether it is there but shows nothing.
    bool refuses = false;
    int calls = 0;
    std::vector<Shown> shown;
    std::function<void(const Shown&)> onShown;
    std::function<void(std::uint32_t)> click;

private:
    RunLoop& runLoop_;
    std::function<void()> availability_;
    int run_ = 1;
    std::uint32_t lastNumber_ = 0;
};

}  // namespace sunpane::testing
