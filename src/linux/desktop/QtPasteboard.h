#pragma once

#include "platform/Pasteboard.h"

namespace sunpane {

/// The desktop's clipboard. What was copied goes with the program, unless a clipboard manager keeps it.
class QtPasteboard : public Pasteboard {
public:
    void setText(const std::string& text) override;
};

}  // namespace sunpane
