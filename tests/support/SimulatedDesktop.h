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
#include "platform/PanelWindow.h"
#include "platform/Screens.h"

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

/// A pointer that is where the test puts it.
class SimulatedPointer : public EventMonitors {
public:
    Point pointerLocation() const override { return location; }
    Subscription onGlobalPointerMoved(std::function<void()> handler) override { return moved_.add(std::move(handler)); }
    Subscription onLocalPointerMoved(std::function<void()> handler) override { return moved_.add(std::move(handler)); }
    void moveTo(Point to) {
        location = to;
        moved_.call();
    }

    Point location{100, 100};

private:
    HandlerList<> moved_;
};

/// Panel windows that only remember.
class SimulatedPanelWindows : public PanelWindows {
public:
    struct Window : PanelWindow {
        explicit Window(const Rect& rect) : rectangle(rect) {}
        Rect frame() const override { return rectangle; }
        bool isVisible() const override { return visible; }
        bool isOnScreen() const override { return visible; }
        void orderFrontRegardless() override { visible = true; }
        void orderOut() override { visible = false; }
        void makeKey() override { key = true; }
        void resignKey() override { key = false; }
        Rect rectangle;
        bool visible = false;
        bool key = false;
    };

    std::unique_ptr<PanelWindow> make(const Rect& frame, const Size& notchSize, double /*cardWidth*/,
                                      double /*maxCardHeight*/) override {
        ++made;
        lastNotch = notchSize;
        auto window = std::make_unique<Window>(frame);
        last = window.get();
        return window;
    }

    int made = 0;
    Size lastNotch;
    Window* last = nullptr;  // valid while the panel it stands for exists
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
