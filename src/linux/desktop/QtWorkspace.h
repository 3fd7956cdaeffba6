#pragma once

#include "platform/Workspace.h"

namespace sunpane {

/// Opens folders with the user's chosen file manager (xdg-open), and ends the application's event loop.
class QtWorkspace : public Workspace {
public:
    void revealFolder(const std::string& path) override;
    void terminate() override;
};

}  // namespace sunpane
