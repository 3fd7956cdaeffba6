#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace sunpane {

/// The desktop's own service that shows notifications right now. Main thread only.
class NotificationService {
public:
    virtual ~NotificationService() = default;

    /// Whether a service is there, or can be started, to show anything.
    virtual bool available() const = 0;

    /// Tells one run of the service from every other, before a restart of the machine too: its numbers mean nothing
    /// in another run. Empty while it does not run.
    virtual std::string instance() const = 0;

    /// Shows a notification with the default sound and a default action, and calls back on the main thread with the
    /// service's number for it, or with 0 when it was not shown.
    virtual void show(const std::string& title, const std::string& body,
                      std::function<void(std::uint32_t number)> shown) = 0;

    /// Called on the main thread with the number of a notification that the user clicked.
    virtual void setClickHandler(std::function<void(std::uint32_t number)> handler) = 0;

    /// Called on the main thread when the service comes or goes.
    virtual void setAvailabilityHandler(std::function<void()> handler) = 0;
};

}  // namespace sunpane
