#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "linux/players/Deadline.h"
#include "linux/players/DevToolsSession.h"
#include "linux/scripts/ScriptObject.h"
#include "platform/UserDefaults.h"

namespace sunpane {

/// A tab of the browser, its texts already fit for a reply.
struct ChromeTab {
    /// The protocol's own name for it.
    std::string target;
    /// Stays the same while the tab is open, and is never given to another one.
    std::int64_t id = 0;
    std::string url;
    std::string title;
};

struct ChromeWindow {
    std::int64_t number = 0;
    /// In the order in which they were first seen. At least one.
    std::vector<ChromeTab> tabs;
    /// The place among `tabs` of the one that shows.
    std::size_t active = 0;
};

/// Chrome or Chromium, through its DevTools port. One thread at a time, the script queue.
///
/// Keeps its connections, which are quiet while nothing is asked. Without a port, or with something else behind it,
/// there are no windows.
class ChromeBrowser {
public:
    /// Further tabs, the ones that were used least recently, are left out.
    static constexpr std::size_t maximumTabs = 1000;
    /// How long a page may take to run a script, before the browser stops it.
    static constexpr std::chrono::milliseconds scriptTime{1000};

    /// The settings outlive the browser.
    explicit ChromeBrowser(const UserDefaults& defaults) : defaults_(defaults) {}

    /// All windows with their tabs, the one that was used last first. Nothing when the browser does not answer.
    std::optional<std::vector<ChromeWindow>> windows(Deadline deadline);

    /// Shows a tab and brings its window to the front. False when the browser did not.
    bool show(const std::string& target, Deadline deadline);

    /// Runs a script in a tab, as if the user had clicked there. The text that it amounts to; nothing for anything
    /// else, and when it fails.
    std::optional<std::string> execute(const std::string& target, const std::string& source, Deadline deadline);

private:
    DevToolsSession* session(Deadline deadline);
    /// In the order of their last use, as far as that is known. Nothing when the browser does not say.
    std::optional<std::vector<ChromeTab>> recentTabs(Deadline deadline);
    /// Sets `active` of windows whose tabs are still in that order.
    void findActiveTabs(std::vector<ChromeWindow>& windows, Deadline deadline);
    void nameTabs(std::vector<ChromeTab>& tabs);

    const UserDefaults& defaults_;
    DevToolsEndpoint endpoint_;
    std::unique_ptr<DevToolsSession> session_;
    /// For questions to pages, any of which may hang, which ends the session.
    std::unique_ptr<DevToolsSession> pages_;
    std::map<std::string, std::int64_t> ids_;
    std::int64_t lastId_ = 0;
};

/// The browser as the script sees it that runs until `deadline`. It is looked at once a script.
scripts::ObjectPointer chromeForScript(ChromeBrowser& browser, Deadline deadline);

}  // namespace sunpane
