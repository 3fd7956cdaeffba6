#pragma once

#include <string>

namespace sunpane {

/// What the user pastes into other programs. Main thread only.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    /// Replaces the content by a plain text.
    virtual void setText(const std::string& text) = 0;
};

}  // namespace sunpane
