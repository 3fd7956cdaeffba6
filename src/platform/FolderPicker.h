#pragma once

#include <functional>
#include <optional>
#include <string>

namespace sunpane {

/// Lets the user choose a folder, or make one. Main thread only.
class FolderPicker {
public:
    virtual ~FolderPicker() = default;

    /// Starts in the folder `start`; `prompt` stands on the button that confirms. Returns at once and calls `done` once
    /// with the folder, or with nothing when the user gave up. A second call while the picker is open brings it to the
    /// front and is answered with nothing.
    virtual void pick(const std::string& start, const std::string& prompt,
                      std::function<void(std::optional<std::string> folder)> done) = 0;
};

}  // namespace sunpane
