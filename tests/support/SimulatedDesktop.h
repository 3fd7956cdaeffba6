#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/HandlerList.h"
#include "platform/DistributedNotifications.h"
#include "platform/EventMonitors.h"
#include "platform/Hotkeys.h"
#include "platform/MotionPreference.h"
#include "platform/PanelWindow.h"
#include "platform/Screens.h"
#include "platform/WindowSpaces.h"
#include "platform/Workspace.h"

namespace sunpane::testing {

/// Screens that a test plugs in and out.
class SimulatedScreens : public Screens {
public:
    std::vector<Screen> all() const override { return screens; }
    std::optional<Screen> main() const override {
        if (screens.empty()) return std::nullopt;
        return screens.front();
    }
    Subscription onChange(std::function<void()> handler) override { return observers_.add(std::move(handler)); }
    void change(std::vector<Screen> next) {
        screens = std::move(next);
        observers_.call();
    }

    std::vector<Screen> screens{{Rect{0, 0, 1440, 900}, 0, {}, {}}};

private:
    HandlerList<> observers_;
};

/// A desktop whose user minds motion or not.
class SimulatedMotion : public MotionPreference {
public:
    bool isReduced() const override { return reduced_; }
    Subscription onChange(std::function<void()> handler) override { return observers_.add(std::move(handler)); }
    void reduce(bool reduced) {
        reduced_ = reduced;
        observers_.call();
    }

private:
    bool reduced_ = false;
    HandlerList<> observers_;
};

/// A pointer that is where the test puts it.
class SimulatedPointer : public EventMonitors {
public:
    Point pointerLocation() const override { return location; }
    Subscription onGlobalPointerMoved(std::function<void()> handler) override { return moved_.add(std::move(handler)); }
    Subscription onLocalPointerMoved(std::function<void()> handler) override { return moved_.add(std::move(handler)); }
    Subscription onGlobalMouseDown(std::function<void()> handler) override {
        return mouseDown_.add(std::move(handler));
    }
    void moveTo(Point to) {
        location = to;
        moved_.call();
    }
    void pressElsewhere() { mouseDown_.call(); }
    Subscription onLocalScroll(std::function<bool(const ScrollEvent&)> handler) override {
        if (refusesScrollMonitors) return {};
        return scrolled_.add(askUntilSwallowed(std::move(handler)));
    }
    Subscription onLocalKeyDown(std::function<bool(const KeyEvent&)> handler) override {
        return keys_.add(askUntilSwallowed(std::move(handler)));
    }
    /// Returns whether a handler swallowed it, as does `press`.
    bool scroll(const ScrollEvent& event) { return tell(scrolled_, event); }
    bool press(const KeyEvent& event) { return tell(keys_, event); }

    Point location{100, 100};
    bool refusesScrollMonitors = false;

private:
    template <class Event>
    using Handlers = HandlerList<const Event&, bool&>;

    template <class Event>
    static typename Handlers<Event>::Handler askUntilSwallowed(std::function<bool(const Event&)> handler) {
        return [handler = std::move(handler)](const Event& event, bool& swallowed) {
            swallowed = swallowed || handler(event);
        };
    }
    template <class Event>
    static bool tell(const Handlers<Event>& handlers, const Event& event) {
        bool swallowed = false;
        handlers.call(event, swallowed);
        return swallowed;
    }

    HandlerList<> moved_;
    HandlerList<> mouseDown_;
    Handlers<ScrollEvent> scrolled_;
    Handlers<KeyEvent> keys_;
};

/// Panel windows that only remember.
class SimulatedPanelWindows : public PanelWindows {
public:
    struct Window : PanelWindow {
        Window(const Rect& rect, std::uint64_t itsNumber, std::shared_ptr<void> counted)
            : rectangle(rect), id(itsNumber), alive(std::move(counted)) {}
        std::uint64_t number() const override { return id; }
        Rect frame() const override { return rectangle; }
        bool isVisible() const override { return visible; }
        bool isOnScreen() const override { return visible; }
        void orderFrontRegardless() override { visible = true; }
        void orderOut() override { visible = false; }
        void prepare() override { prepared = true; }
        void makeKey() override { key = true; }
        void resignKey() override { key = false; }
        Rect rectangle;
        std::uint64_t id;
        std::shared_ptr<void> alive;
        bool visible = false;
        bool key = false;
        bool prepared = false;
    };

    std::unique_ptr<PanelWindow> make(const Rect& frame, const Size& notchSize, double /*cardWidth*/,
                                      double /*maxCardHeight*/) override {
        lastNotch = notchSize;
        auto window = std::make_unique<Window>(frame, static_cast<std::uint64_t>(++made), alive_);
        last = window.get();
        return window;
    }

    /// How many windows exist.
    long count() const { return alive_.use_count() - 1; }

    int made = 0;
    Size lastNotch;
    Window* last = nullptr;  // valid while the panel it stands for exists

private:
    std::shared_ptr<void> alive_ = std::make_shared<int>(0);
};

/// A desktop around the program whose events a test brings about, and which remembers what was opened.
class SimulatedWorkspace : public Workspace {
public:
    void revealFolder(const std::string& path) override { revealed.push_back(path); }
    void openUrl(const std::string& url) override { opened.push_back(url); }
    void openAccountSettings() override {}
    Subscription observeWake(std::function<void()> handler) override { return wakes_.add(std::move(handler)); }
    Subscription onApplicationActivated(std::function<void()> handler) override {
        return activations_.add(std::move(handler));
    }
    void terminate() override { terminated = true; }
    void wake() { wakes_.call(); }
    void activateAnother() { activations_.call(); }

    std::vector<std::string> opened;
    std::vector<std::string> revealed;
    bool terminated = false;

private:
    HandlerList<> wakes_;
    HandlerList<> activations_;
};

/// A desktop with spaces, and private ones above them, between which a test switches.
class SimulatedSpaces : public WindowSpaces {
public:
    SpaceID activeSpace() const override { return active; }
    std::optional<std::int32_t> type(SpaceID /*space*/) const override { return activeType; }
    Subscription onActiveSpaceChanged(std::function<void()> handler) override {
        return switches_.add(std::move(handler));
    }
    SpaceID createPrivate(std::int32_t level) override {
        if (!hasPrivate) return 0;
        levels[++lastPrivate] = level;
        return lastPrivate;
    }
    void show(SpaceID space) override { shown = space; }
    void moveWindow(std::uint64_t windowNumber, SpaceID space) override { windows[windowNumber] = space; }
    void destroy(SpaceID space) override { levels.erase(space); }

    /// Comes on screen; with `announced` false only a look at `activeSpace` tells.
    void switchTo(SpaceID space, bool announced = true) {
        active = space;
        if (announced) switches_.call();
    }

    SpaceID active = 1;
    std::optional<std::int32_t> activeType = ordinary;
    bool hasPrivate = true;
    SpaceID lastPrivate = 100;
    SpaceID shown = 0;
    std::map<SpaceID, std::int32_t> levels;    // of the private spaces that exist
    std::map<std::uint64_t, SpaceID> windows;  // the space that each window was moved to last

private:
    HandlerList<> switches_;
};

/// A keyboard whose Control+Space may belong to this program, to another one, or to nobody.
class SimulatedHotkeys : public Hotkeys {
public:
    Subscription registerControlSpace(std::function<void()> handler) override {
        if (ownedByAnother || registrations > 0) return {};
        ++registrations;
        return Subscription([this, registration = std::make_shared<Subscription>(pressed_.add(std::move(handler)))] {
            --registrations;
            registration->cancel();
        });
    }
    void press() { pressed_.call(); }

    bool ownedByAnother = false;
    int registrations = 0;

private:
    HandlerList<> pressed_;
};

class SimulatedBroadcasts : public DistributedNotifications {
public:
    Subscription observe(const std::string& name, std::function<void()> handler) override {
        return observers_[name].add(std::move(handler));
    }
    void broadcast(const std::string& name) { observers_[name].call(); }

private:
    std::map<std::string, HandlerList<>> observers_;
};

}  // namespace sunpane::testing
