#pragma once

#include <functional>
#include <string>

#include "base/Subscription.h"

namespace sunpane {

/// The user's desktop around the program. Main thread only.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Shows a folder in the user's file manager. Returns at once; without a file manager nothing happens.
    virtual void revealFolder(const std::string& path) = 0;

    /// Opens an address in the user's browser or mail program. Only `http`, `https` and `mailto` addresses are opened.
    /// Returns at once; without such a program nothing happens.
    virtual void openUrl(const std::string& url) = 0;

    /// Opens the desktop's settings of online accounts, such as of a calendar on the web. Returns at once; nothing
    /// happens where the desktop has none.
    virtual void openAccountSettings() = 0;

    /// Calls `handler` after the machine woke from sleep.
    [[nodiscard]] virtual Subscription observeWake(std::function<void()> handler) = 0;

    /// Calls `handler` after another program's window became the active one.
    [[nodiscard]] virtual Subscription onApplicationActivated(std::function<void()> handler) = 0;

    /// Ends this program in good order.
    virtual void terminate() = 0;
};

}  // namespace sunpane
