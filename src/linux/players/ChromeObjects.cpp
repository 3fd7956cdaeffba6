#include <algorithm>
#include <utility>

#include "linux/players/ChromeBrowser.h"

namespace sunpane {
namespace {

using scripts::Object;
using scripts::ObjectList;
using scripts::ObjectPointer;
using scripts::Term;
using scripts::Value;

class TabObject : public Object {
public:
    TabObject(ChromeBrowser& browser, ChromeTab tab, Deadline deadline)
        : browser_(browser), tab_(std::move(tab)), deadline_(deadline) {}

    std::optional<Value> get(Term term) override {
        switch (term) {
            case Term::id:
                return tab_.id;
            case Term::url:
                return tab_.url;
            case Term::title:
                return tab_.title;
            default:
                return std::nullopt;
        }
    }

    std::optional<Value> executeJavaScript(const std::string& source) override {
        return browser_.execute(tab_.target, source, deadline_);
    }

private:
    ChromeBrowser& browser_;
    const ChromeTab tab_;
    const Deadline deadline_;
};

/// The target that shows in the window that the script moved to the front; empty before.
using Front = std::shared_ptr<std::string>;

class WindowObject : public Object {
public:
    WindowObject(ChromeBrowser& browser, ChromeWindow window, std::int64_t index, Front front, Deadline deadline)
        : browser_(browser), window_(std::move(window)), index_(index), front_(std::move(front)), deadline_(deadline) {}

    std::optional<Value> get(Term term) override {
        if (term == Term::activeTabIndex) return static_cast<std::int64_t>(window_.active + 1);
        if (term == Term::index) return index_;
        if (term != Term::tabs) return std::nullopt;
        ObjectList tabs;
        for (const auto& tab : window_.tabs)
            tabs.push_back(std::make_shared<TabObject>(browser_, tab, deadline_));
        return tabs;
    }

    bool set(Term term, const Value& value) override {
        const auto* number = std::get_if<std::int64_t>(&value);
        if (number == nullptr) return false;
        if (term == Term::activeTabIndex) {
            if (*number < 1 || *number > static_cast<std::int64_t>(window_.tabs.size())) return false;
            window_.active = static_cast<std::size_t>(*number - 1);
            return show();
        }
        // A window can be brought to the front, and nowhere else.
        if (term != Term::index || *number != 1 || !show()) return false;
        *front_ = window_.tabs[window_.active].target;
        return true;
    }

private:
    bool show() { return browser_.show(window_.tabs[window_.active].target, deadline_); }

    ChromeBrowser& browser_;
    ChromeWindow window_;
    const std::int64_t index_;
    const Front front_;
    const Deadline deadline_;
};

class BrowserObject : public Object {
public:
    BrowserObject(ChromeBrowser& browser, Deadline deadline) : browser_(browser), deadline_(deadline) {}

    std::optional<Value> get(Term term) override {
        if (term != Term::windows) return std::nullopt;
        auto windows = browser_.windows(deadline_);
        if (!windows) return std::nullopt;
        ObjectList result;
        for (auto& window : *windows) {
            const auto index = static_cast<std::int64_t>(result.size() + 1);
            result.push_back(std::make_shared<WindowObject>(browser_, std::move(window), index, front_, deadline_));
        }
        return result;
    }

    bool perform(scripts::Verb verb) override {
        // The browser cannot be brought forward but with one of its windows, and which one is the user's, it does not
        // tell.
        return verb == scripts::Verb::activate && !front_->empty() && browser_.show(*front_, deadline_);
    }

private:
    ChromeBrowser& browser_;
    const Front front_ = std::make_shared<std::string>();
    const Deadline deadline_;
};

}  // namespace

ObjectPointer chromeForScript(ChromeBrowser& browser, Deadline deadline) {
    return std::make_shared<BrowserObject>(browser, deadline);
}

}  // namespace sunpane
