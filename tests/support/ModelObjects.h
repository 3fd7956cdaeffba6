#pragma once

#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "linux/scripts/ScriptObject.h"

namespace sunpane::scripts {

/// An object whose properties are what a test puts in, and which notes what it is told.
class ModelObject : public Object {
public:
    std::optional<Value> get(Term term) override {
        const auto property = properties.find(term);
        if (property == properties.end()) return std::nullopt;
        return property->second;
    }

    bool set(Term term, const Value& value) override {
        if (properties.count(term) == 0) return false;
        properties[term] = value;
        return true;
    }

    bool perform(Verb verb) override {
        performed.push_back(verb);
        return obeys;
    }

    std::optional<Value> executeJavaScript(const std::string& source) override {
        executed.push_back(source);
        return javaScriptResult;
    }

    std::map<Term, Value> properties;
    bool obeys = true;
    std::optional<Value> javaScriptResult;
    std::vector<Verb> performed;
    std::vector<std::string> executed;
};

class ModelHost : public Host {
public:
    ObjectPointer application(std::string_view name) override {
        const auto found = applications.find(std::string(name));
        return found == applications.end() ? nullptr : found->second;
    }
    ObjectPointer additions() override { return volume; }
    bool mayGoOn() override { return stepsLeft-- > 0; }

    std::map<std::string, std::shared_ptr<ModelObject>> applications;
    int stepsLeft = std::numeric_limits<int>::max();
    std::shared_ptr<ModelObject> volume = std::make_shared<ModelObject>();
};

/// A machine with a player, a browser with two windows of one and two tabs, and sound that is on.
inline ModelHost sampleMachine() {
    ModelHost host;
    const auto object = [](std::map<Term, Value> properties) {
        auto result = std::make_shared<ModelObject>();
        result->properties = std::move(properties);
        return result;
    };
    const auto tab = [&](std::int64_t id, const std::string& url, const std::string& title) {
        return object({{Term::id, id}, {Term::url, url}, {Term::title, title}});
    };
    const auto window = [&](ObjectList tabs, std::int64_t active, std::int64_t index) {
        return object({{Term::tabs, std::move(tabs)}, {Term::activeTabIndex, active}, {Term::index, index}});
    };
    const ObjectPointer track =
        object({{Term::name, "Song"}, {Term::artist, "Band"}, {Term::artworkUrl, "https://covers.example/1.jpg"}});
    host.applications["Spotify"] = object({{Term::playerState, "playing"}, {Term::currentTrack, track}});
    host.applications["Google Chrome"] =
        object({{Term::windows,
                 ObjectList{window({tab(7, "https://a.example/", "A")}, 1, 1),
                            window({tab(8, "https://b.example/", "B"), tab(9, "https://c.example/", "C")}, 2, 2)}}});
    const ObjectPointer settings = object({{Term::outputMuted, false}});
    host.volume->properties[Term::volumeSettings] = settings;
    host.volume->obeys = false;
    return host;
}

}  // namespace sunpane::scripts
