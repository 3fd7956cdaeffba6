#pragma once

#include <string_view>

namespace sunpane {

/// The user's other applications, by bundle identifier such as "com.spotify.client". Main thread only. Answers at once
/// from what is known; looking happens in the background.
class RunningApplications {
public:
    virtual ~RunningApplications() = default;

    /// Whether someone has looked yet. Until then no application counts as running.
    virtual bool loaded() const = 0;

    /// Whether at least one instance runs.
    virtual bool isRunning(std::string_view bundleIdentifier) const = 0;

    /// Brings the application to the front, and starts it first if it does not run. Returns at once; nothing happens
    /// when it is not installed.
    virtual void open(std::string_view bundleIdentifier) = 0;
};

}  // namespace sunpane
