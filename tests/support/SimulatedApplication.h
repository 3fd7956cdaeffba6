#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Alerts.h"
#include "platform/ApplicationBundle.h"
#include "platform/FolderPicker.h"
#include "platform/LoginService.h"
#include "platform/Pasteboard.h"

namespace sunpane::testing {

class SimulatedBundle : public ApplicationBundle {
public:
    std::string path() const override { return where; }
    std::vector<std::string> applicationFolders() const override { return {"/usr/", "/opt/", "/home/ada/.local/"}; }
    std::string installedPath() const override { return "/home/ada/.local/lib/Dawnly.app"; }
    bool install() override { return canInstall; }
    void openInstalled() override { ++opened; }

    std::string where = "/usr/lib/Dawnly.app";
    bool canInstall = true;
    int opened = 0;
};

class SimulatedLoginService : public LoginService {
public:
    bool isEnabled() const override { return enabled; }
    bool startsAnotherCopy() const override { return enabled && isForAnotherCopy; }
    std::optional<std::string> setEnabled(bool on) override {
        ++changes;
        if (error) return error;
        enabled = on;
        isForAnotherCopy = false;
        return std::nullopt;
    }

    bool enabled = false;
    bool isForAnotherCopy = false;
    std::optional<std::string> error;
    int changes = 0;
};

/// Alerts that a test answers one after the other.
class SimulatedAlerts : public Alerts {
public:
    void show(Alert alert, std::function<void(bool)> answered) override {
        waiting_.emplace_back(std::move(alert), std::move(answered));
    }
    /// The message on screen; empty when there is none.
    std::string message() const { return waiting_.empty() ? "" : waiting_.front().first.message; }
    void answer(bool first) {
        const auto answered = std::move(waiting_.front().second);
        waiting_.erase(waiting_.begin());
        answered(first);
    }

private:
    std::vector<std::pair<Alert, std::function<void(bool)>>> waiting_;
};

class SimulatedPasteboard : public Pasteboard {
public:
    void setText(const std::string& text) override { content = text; }
    std::string content;
};

class SimulatedFolderPicker : public FolderPicker {
public:
    void pick(const std::string& start, const std::string& prompt,
              std::function<void(std::optional<std::string>)> done) override {
        startedIn = start;
        button = prompt;
        done_ = std::move(done);
    }
    void answer(std::optional<std::string> folder) { std::exchange(done_, nullptr)(std::move(folder)); }

    std::string startedIn;
    std::string button;

private:
    std::function<void(std::optional<std::string>)> done_;
};

}  // namespace sunpane::testing
