#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "notch/NotchController.h"
#include "support/ViewModelFixture.h"

namespace sunpane {

// A 1440 x 900 screen without a camera housing: the hot zone spans x 650 to 790 and y 874 to 990, the panel's window
// x 330 to 1110 and y 79 to 900.
inline constexpr Point atNotch{720, 890};
inline constexpr Point farAway{100, 100};

/// A controller with a real view model, everything around them simulated.
struct NotchControllerTest : testing::ViewModelFixture {
    testing::SimulatedScreens screens;
    testing::SimulatedPanelWindows windows;
    testing::SimulatedWorkspace workspace;
    testing::SimulatedSpaces spaces;
    testing::SimulatedBroadcasts broadcasts;
    PinnedSpace pinned{&spaces, defaults, [this](const std::string& line) { lines.push_back(line); }};
    std::optional<NotchController> controller;
    std::string report;
    std::vector<std::string> lines;

    void SetUp() override {
        controller.emplace(NotchController::Collaborators{platform.clock, platform.runLoop, screens, pointer, windows,
                                                          workspace, &spaces, pinned, broadcasts, notifications, *model,
                                                          [] { return std::string("glass"); },
                                                          [this](const std::string& json) { report = json; }});
    }

    void show() {
        controller->show();
        platform.time.advance(0.1);
    }
    void moveTo(Point point) {
        pointer.moveTo(point);
        platform.time.runPending();
    }
    nlohmann::json askForReport() {
        broadcasts.broadcast("app.dawnly.Dawnly.report");
        platform.time.runPending();
        return nlohmann::json::parse(report);
    }
};

}  // namespace sunpane
