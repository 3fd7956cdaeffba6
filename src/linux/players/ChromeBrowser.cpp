#include "linux/players/ChromeBrowser.h"

#include <algorithm>
#include <utility>

#include "linux/players/LoopbackClient.h"
#include "linux/players/PlayerText.h"

namespace sunpane {
namespace {

using nlohmann::json;

/// Targets are named by hexadecimal numbers; a longer name is none.
constexpr std::size_t maximumTargetBytes = 64;

}  // namespace

DevToolsSession* ChromeBrowser::session(Deadline deadline) {
    auto endpoint = findDevTools(defaults_);
    if (!endpoint) {
        session_.reset();
        return nullptr;
    }
    if (session_ && (session_->broken() || !(*endpoint == endpoint_))) session_.reset();
    if (!session_) {
        endpoint_ = std::move(*endpoint);
        session_ = DevToolsSession::open(endpoint_, deadline);
    }
    return session_.get();
}

std::vector<ChromeTab> ChromeBrowser::recentTabs(Deadline deadline) {
    // Only this list tells which tab was used last; the protocol's own gives no order.
    const auto body = loopback::httpGet(endpoint_.port, "/json/list", deadline);
    const json list = body ? json::parse(*body, nullptr, false) : json();
    std::vector<ChromeTab> tabs;
    if (!list.is_array()) return tabs;
    for (const auto& entry : list) {
        if (tabs.size() == maximumTabs) break;
        if (textMember(entry, "type") != "page") continue;
        ChromeTab tab{textMember(entry, "id"), 0, playerText(textMember(entry, "url")),
                      playerText(textMember(entry, "title"))};
        if (!tab.target.empty() && tab.target.size() <= maximumTargetBytes) tabs.push_back(std::move(tab));
    }
    return tabs;
}

void ChromeBrowser::nameTabs(std::vector<ChromeTab>& tabs) {
    std::map<std::string, std::int64_t> ids;
    // The list begins with what was used last, which is mostly what was opened last.
    for (auto tab = tabs.rbegin(); tab != tabs.rend(); ++tab) {
        const auto known = ids_.find(tab->target);
        tab->id = known == ids_.end() ? ++lastId_ : known->second;
        ids.emplace(tab->target, tab->id);
    }
    ids_ = std::move(ids);
}

std::optional<std::vector<ChromeWindow>> ChromeBrowser::windows(Deadline deadline) {
    DevToolsSession* browser = session(deadline);
    if (browser == nullptr) return std::nullopt;
    auto tabs = recentTabs(deadline);
    nameTabs(tabs);
    std::vector<DevToolsSession::Call> calls;
    calls.reserve(tabs.size());
    for (const auto& tab : tabs)
        calls.push_back({"Browser.getWindowForTarget", {{"targetId", tab.target}}, {}});
    const auto answers = browser->call(calls, deadline);
    if (browser->broken()) return std::nullopt;

    std::vector<ChromeWindow> windows;
    for (std::size_t i = 0; i < tabs.size(); ++i) {
        // A page in no window is none of the user's tabs.
        if (!answers[i] || !answers[i]->is_object()) continue;
        const auto number = answers[i]->find("windowId");
        if (number == answers[i]->end() || !number->is_number_integer()) continue;
        const auto id = number->get<std::int64_t>();
        auto window =
            std::find_if(windows.begin(), windows.end(), [&](const ChromeWindow& known) { return known.number == id; });
        if (window == windows.end()) window = windows.insert(windows.end(), ChromeWindow{id, {}, 0});
        window->tabs.push_back(std::move(tabs[i]));
    }
    for (auto& window : windows) {
        const std::int64_t active = window.tabs.front().id;
        std::sort(window.tabs.begin(), window.tabs.end(),
                  [](const ChromeTab& a, const ChromeTab& b) { return a.id < b.id; });
        const auto place = std::find_if(window.tabs.begin(), window.tabs.end(),
                                        [&](const ChromeTab& tab) { return tab.id == active; });
        window.active = static_cast<std::size_t>(place - window.tabs.begin());
    }
    return windows;
}

bool ChromeBrowser::show(const std::string& target, Deadline deadline) {
    DevToolsSession* browser = session(deadline);
    return browser != nullptr && browser->call({"Target.activateTarget", {{"targetId", target}}, {}}, deadline);
}

std::optional<std::string> ChromeBrowser::execute(const std::string& target, const std::string& source,
                                                  Deadline deadline) {
    DevToolsSession* browser = session(deadline);
    if (browser == nullptr) return std::nullopt;
    const auto attached =
        browser->call({"Target.attachToTarget", {{"targetId", target}, {"flatten", true}}, {}}, deadline);
    if (!attached) return std::nullopt;
    const std::string page = textMember(*attached, "sessionId");
    if (page.empty()) return std::nullopt;
    const auto answer = browser->call(
        {"Runtime.evaluate",
         {{"expression", source}, {"returnByValue", true}, {"userGesture", true}, {"timeout", scriptTime.count()}},
         page},
        deadline);
    browser->call({"Target.detachFromTarget", {{"sessionId", page}}, {}}, deadline);
    if (!answer || !answer->is_object() || answer->contains("exceptionDetails")) return std::nullopt;
    const auto result = answer->find("result");
    if (result == answer->end() || textMember(*result, "type") != "string") return std::nullopt;
    return playerText(textMember(*result, "value"));
}

}  // namespace sunpane
