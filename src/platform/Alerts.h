#pragma once

#include <functional>
#include <string>

namespace sunpane {

/// A message that wants an answer.
struct Alert {
    std::string message;
    std::string informativeText;
    std::string firstButton;
    /// Empty: there is only the first.
    std::string secondButton;
};

/// Messages in windows of their own, in front of everything. Main thread only.
class Alerts {
public:
    virtual ~Alerts() = default;

    /// Shows the message and returns; calls `answered` once, with whether the first button was chosen. Closing the
    /// window chooses the second; the end of the program chooses none. A message that comes while one is shown waits
    /// for its turn.
    virtual void show(Alert alert, std::function<void(bool first)> answered) = 0;
};

}  // namespace sunpane
