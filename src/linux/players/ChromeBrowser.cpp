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

/// An address and a title are cut to these many bytes, so that all tabs together fit into one reply.
constexpr std::size_t maximumAddressBytes = 2048;
constexpr std::size_t maximumTitleBytes = 512;

/// That many of a window's tabs are asked whether they show, at most.
constexpr std::size_t maximumAsked = 20;
/// The first round asks this many tabs of each window, and each further one this many times as many.
constexpr std::size_t roundGrowth = 4;
/// How long the tabs may take for all that together. One that hangs never answers.
constexpr std::chrono::milliseconds visibilityTime{300};

enum class Visibility { unknown, hidden, visible };

/// Asks pages whether they show. `pages` is given up on one that does not answer in time.
std::vector<Visibility> visibilities(DevToolsSession& pages, const std::vector<std::string>& targets,
                                     Deadline deadline) {
    std::vector<DevToolsSession::Call> attaching;
    attaching.reserve(targets.size());
    for (const auto& target : targets)
        attaching.push_back({"Target.attachToTarget", {{"targetId", target}, {"flatten", true}}, {}});
    std::vector<DevToolsSession::Call> asking;
    std::vector<DevToolsSession::Call> detaching;
    std::vector<std::size_t> places;
    const auto attached = pages.call(attaching, deadline);
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const std::string page = attached[i] ? textMember(*attached[i], "sessionId") : std::string();
        if (page.empty()) continue;
        places.push_back(i);
        asking.push_back({"Runtime.evaluate", {{"expression", "document.visibilityState"}}, page});
        detaching.push_back({"Target.detachFromTarget", {{"sessionId", page}}, {}});
    }
    std::vector<Visibility> result(targets.size(), Visibility::unknown);
    const auto answers = pages.call(asking, deadline);
    for (std::size_t i = 0; i < answers.size(); ++i) {
        if (!answers[i] || !answers[i]->is_object()) continue;
        const auto value = answers[i]->find("result");
        const std::string state = value == answers[i]->end() ? std::string() : textMember(*value, "value");
        if (state == "visible") result[places[i]] = Visibility::visible;
        if (state == "hidden") result[places[i]] = Visibility::hidden;
    }
    pages.call(detaching, deadline);
    return result;
}

}  // namespace

DevToolsSession* ChromeBrowser::session(Deadline deadline) {
    auto endpoint = findDevTools(defaults_);
    if (!endpoint) {
        session_.reset();
        pages_.reset();
        return nullptr;
    }
    if (session_ && (session_->broken() || !(*endpoint == endpoint_))) session_.reset();
    if (!session_) {
        pages_.reset();
        endpoint_ = std::move(*endpoint);
        session_ = DevToolsSession::open(endpoint_, deadline);
    }
    return session_.get();
}

std::optional<std::vector<ChromeTab>> ChromeBrowser::recentTabs(Deadline deadline) {
    // Only this list has an order, by when a tab was used last; one that was opened in the background counts as used.
    const auto body = loopback::httpGet(endpoint_.port, "/json/list", deadline);
    const json list = body ? json::parse(*body, nullptr, false) : json();
    if (!list.is_array()) return std::nullopt;
    std::vector<ChromeTab> tabs;
    for (const auto& entry : list) {
        if (tabs.size() == maximumTabs) break;
        if (textMember(entry, "type") != "page") continue;
        ChromeTab tab{textMember(entry, "id"), 0, playerText(textMember(entry, "url"), maximumAddressBytes),
                      playerText(textMember(entry, "title"), maximumTitleBytes)};
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
    auto list = recentTabs(deadline);
    if (!list) return std::nullopt;
    auto& tabs = *list;
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
    findActiveTabs(windows, std::min(deadline, deadlineIn(visibilityTime)));
    for (auto& window : windows) {
        const std::int64_t active = window.tabs[window.active].id;
        std::sort(window.tabs.begin(), window.tabs.end(),
                  [](const ChromeTab& a, const ChromeTab& b) { return a.id < b.id; });
        const auto place = std::find_if(window.tabs.begin(), window.tabs.end(),
                                        [&](const ChromeTab& tab) { return tab.id == active; });
        window.active = static_cast<std::size_t>(place - window.tabs.begin());
    }
    return windows;
}

void ChromeBrowser::findActiveTabs(std::vector<ChromeWindow>& windows, Deadline deadline) {
    std::vector<ChromeWindow*> open;
    for (auto& window : windows) {
        if (window.tabs.size() > 1) open.push_back(&window);
    }
    if (open.empty()) return;
    if (!pages_ || pages_->broken()) pages_ = DevToolsSession::open(endpoint_, deadline);
    for (std::size_t begin = 0, size = roundGrowth; pages_ && !open.empty() && begin < maximumAsked;
         begin += size, size *= roundGrowth) {
        std::vector<std::string> targets;
        for (const auto* window : open) {
            for (std::size_t i = begin; i < std::min(begin + size, window->tabs.size()); ++i)
                targets.push_back(window->tabs[i].target);
        }
        const auto states = visibilities(*pages_, targets, deadline);
        auto state = states.begin();
        std::vector<ChromeWindow*> rest;
        for (auto* window : open) {
            const std::size_t end = std::min(begin + size, window->tabs.size());
            const auto last = state + static_cast<std::ptrdiff_t>(end - begin);
            // What shows may be what hangs, so that silence comes before a no.
            auto shown = std::find(state, last, Visibility::visible);
            const bool found = shown != last;
            if (!found) shown = std::find(state, last, Visibility::unknown);
            if (shown != last) window->active = begin + static_cast<std::size_t>(shown - state);
            if (!found && shown == last && end < window->tabs.size()) rest.push_back(window);
            state = last;
        }
        open = std::move(rest);
    }
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
